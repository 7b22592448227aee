#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "driver/build.h"
#include "driver/command_line.h"
#include "driver/report.h"

int main(int argc, char** argv) {
    std::set_new_handler(ReportNoMemory);
    PrintBanner();
    if (ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc))) BuildProgram();
    std::fflush(nullptr);
    std::_Exit(0);  // freeing the tables one by one would take up to a tenth of the run
}
