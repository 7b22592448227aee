// What editors can have done beside what the protocol knows.
#include "lsp/features.h"
#include "lsp/uri.h"

namespace lsp {

const char* const showCppCommand = "korvel.showCpp";

// The generated files of the program that the file with the URI is a part of, as one text.
Json ExecuteCommand(Workspace& workspace, const Json& params) {
    const std::string command = params.at("command").get<std::string>();
    if (command != showCppCommand) throw Refusal("there is no command " + command);
    const std::string path = PathOfUri(params.at("arguments").at(0).get<std::string>());
    const korvel::Result result = korvel::Translate(workspace.RequestFor(workspace.ProgramOf(path).main));
    if (!korvel::IsSound(result)) throw Refusal("a program with mistakes has no C++");
    std::string text;
    for (const korvel::GeneratedFile& file : result.files)
        text += "// " + file.path + "\n" + file.text + "\n";
    return text;
}

}  // namespace lsp
