#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "driver/build.h"
#include "driver/command_line.h"

int main(int argc, char** argv) {
    PrintBanner();
    if (ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc))) BuildProgram();
    std::fflush(nullptr);
    std::_Exit(0);  // freeing the tables one by one would take up to a tenth of the run
}
