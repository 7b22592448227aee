#include <cstdio>
#include <cstdlib>
#include <new>

#include "base/report.h"
#include "base/utf8.h"
#include "driver/build.h"
#include "driver/command_line.h"

// Before anything else takes memory: tables are made before main begins.
__attribute__((constructor(101))) static void BeginMemory() { std::set_new_handler(ReportNoMemory); }

int main(int argc, char** argv) {
    int status = 0;
    {
        const Utf8Console console;
        PrintBanner();
        if (ParseCommandLine(CommandLineWords(argc, argv))) status = BuildProgram();
        std::fflush(nullptr);
    }
    std::_Exit(status);  // freeing the tables one by one would take up to a tenth of the run
}
