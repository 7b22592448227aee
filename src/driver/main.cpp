#include <string>
#include <vector>

#include "driver/build.h"
#include "driver/command_line.h"

int main(int argc, char** argv) {
    PrintBanner();
    if (ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc))) BuildProgram();
    return 0;
}
