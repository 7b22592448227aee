// What the server can tell and do, a routine for each request: it takes the request's parameters and gives its result.
#pragma once

#include <stdexcept>
#include <string>

#include "lsp/json.h"
#include "lsp/workspace.h"

namespace lsp {

// Ends a request that makes sense but cannot be fulfilled; the text is for the user.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Json Hover(Workspace& workspace, const Json& params);
Json Definition(Workspace& workspace, const Json& params);
Json References(Workspace& workspace, const Json& params);
Json PrepareCallHierarchy(Workspace& workspace, const Json& params);
Json IncomingCalls(Workspace& workspace, const Json& params);
Json OutgoingCalls(Workspace& workspace, const Json& params);
Json PrepareRename(Workspace& workspace, const Json& params);
Json Rename(Workspace& workspace, const Json& params);
Json DocumentSymbols(Workspace& workspace, const Json& params);
Json Completion(Workspace& workspace, const Json& params);
Json Formatting(Workspace& workspace, const Json& params);
Json FoldingRanges(Workspace& workspace, const Json& params);
Json SignatureHelp(Workspace& workspace, const Json& params);
Json InlayHints(Workspace& workspace, const Json& params);
Json SemanticTokens(Workspace& workspace, const Json& params);
Json Highlights(Workspace& workspace, const Json& params);
Json WorkspaceSymbols(Workspace& workspace, const Json& params);
Json ExecuteCommand(Workspace& workspace, const Json& params);
Json CodeActions(Workspace& workspace, const Json& params);

// The command of ExecuteCommand.
extern const char* const showCppCommand;

// The words that the numbers of semantic tokens stand for.
Json TokenTypes();
Json TokenModifiers();

// What is wrong with the programs of all open documents: lists of diagnostics by URI.
std::map<std::string, Json> DiagnosticsOfAll(Workspace& workspace);

// "Method Hit:Int(damage:Int)"
std::string DeclarationOf(const korvel::Symbol& symbol);
// The comment above a declaration, or what the manual says of a name of the library.
std::string DescriptionOf(Workspace& workspace, const korvel::Symbol& symbol);
std::string PathOfDocument(const Json& params);

}  // namespace lsp
