// The life of a connection: what is asked goes to the routines of features.h, and whenever nothing waits, what is wrong
// with the texts is told.
#include <exception>
#include <iterator>

#include "lsp/features.h"
#include "lsp/inbox.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

namespace code {
constexpr int parseError = -32700, invalidRequest = -32600, methodNotFound = -32601, invalidParams = -32602,
              internalError = -32603, notInitialized = -32002, requestCancelled = -32800,
              requestFailed = -32803;
}

struct RequestRow {
    const char* method;
    Json (*answer)(Workspace& workspace, const Json& params);
};

constexpr RequestRow requestRows[] = {
    {"textDocument/hover", Hover},
    {"textDocument/definition", Definition},
    {"textDocument/references", References},
    {"textDocument/prepareCallHierarchy", PrepareCallHierarchy},
    {"callHierarchy/incomingCalls", IncomingCalls},
    {"callHierarchy/outgoingCalls", OutgoingCalls},
    {"textDocument/prepareRename", PrepareRename},
    {"textDocument/rename", Rename},
    {"textDocument/documentSymbol", DocumentSymbols},
    {"textDocument/completion", Completion},
    {"textDocument/formatting", Formatting},
    {"textDocument/codeAction", CodeActions},
    {"textDocument/foldingRange", FoldingRanges},
    {"textDocument/signatureHelp", SignatureHelp},
    {"textDocument/inlayHint", InlayHints},
    {"textDocument/semanticTokens/full", SemanticTokens},
    {"textDocument/documentHighlight", Highlights},
    {"workspace/symbol", WorkspaceSymbols},
    {"workspace/executeCommand", ExecuteCommand},
};

void Opened(Workspace& workspace, const Json& params) { workspace.Open(params.at("textDocument")); }
void Edited(Workspace& workspace, const Json& params) {
    workspace.Change(params.at("textDocument"), params.at("contentChanges"));
}
void Closed(Workspace& workspace, const Json& params) {
    workspace.Close(params.at("textDocument").at("uri").get<std::string>());
}
void Touched(Workspace& workspace, const Json&) { workspace.Forget(); }

struct NotificationRow {
    const char* method;
    void (*take)(Workspace& workspace, const Json& params);
};

constexpr NotificationRow notificationRows[] = {
    {"textDocument/didOpen", Opened},
    {"textDocument/didChange", Edited},
    {"textDocument/didClose", Closed},
    {"textDocument/didSave", Touched},
    {"workspace/didChangeWatchedFiles", Touched},
};

template <class Rows>
const auto* RowOf(const Rows& rows, const std::string& method) {
    for (const auto& row : rows)
        if (method == row.method) return &row;
    return static_cast<decltype(&*std::begin(rows))>(nullptr);
}

struct UnitsRow {
    const char* name;
    Units units;
};

constexpr UnitsRow unitsRows[] = {{"utf-16", Units::Utf16}, {"utf-8", Units::Utf8}, {"utf-32", Units::Utf32}};

// What the client likes best of what both know; all know UTF-16.
const UnitsRow& UnitsOf(const Json& params) {
    const Json::json_pointer known("/capabilities/general/positionEncodings");
    const Json names = params.is_object() ? params.value(known, Json::array()) : Json::array();
    for (const Json& name : names)
        for (const UnitsRow& row : unitsRows)
            if (name == row.name) return row;
    return unitsRows[0];
}

Json Capabilities(const char* positions) {
    return {
        {"positionEncoding", positions},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}, {"save", true}}},
        {"hoverProvider", true},
        {"definitionProvider", true},
        {"referencesProvider", true},
        {"callHierarchyProvider", true},
        {"renameProvider", {{"prepareProvider", true}}},
        {"documentSymbolProvider", true},
        {"completionProvider", {{"triggerCharacters", {"\\", ":", "\"", "/"}}}},
        {"documentFormattingProvider", true},
        {"foldingRangeProvider", true},
        {"signatureHelpProvider", {{"triggerCharacters", {"(", ","}}}},
        {"inlayHintProvider", true},
        {"semanticTokensProvider",
         {{"legend", {{"tokenTypes", TokenTypes()}, {"tokenModifiers", TokenModifiers()}}}, {"full", true}}},
        {"documentHighlightProvider", true},
        {"workspaceSymbolProvider", true},
        {"executeCommandProvider", {{"commands", {showCppCommand}}}},
        {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}}};
}

class Server {
public:
    Server(const Services& services, std::FILE* from, std::FILE* to)
        : workspace(services), inbox(from), output(to) {}

    int Run() {
        Json message;
        while (!leaves && inbox.Take(message)) {
            Handle(message);
            if (inbox.IsEmpty() && changed && !leaves) TellDiagnostics();
        }
        return isShutDown && leaves ? 0 : 1;
    }

private:
    Workspace workspace;
    Inbox inbox;
    std::FILE* output;
    std::map<std::string, Json> told;  // diagnostics by URI
    bool isInitialized = false, isShutDown = false, leaves = false, changed = false;
    bool watches = false;  // the client can tell of changes on disk

    void Send(Json message) {
        message["jsonrpc"] = "2.0";
        WriteMessage(output, message.dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    void SendError(const Json& id, int number, const std::string& text) {
        Send({{"id", id}, {"error", {{"code", number}, {"message", text}}}});
    }

    void Handle(const Json& message) {
        if (message.is_discarded()) return SendError(nullptr, code::parseError, "no JSON");
        const bool isMessage =
            message.is_object() && message.contains("method") && message["method"].is_string();
        const bool isAnswer = message.is_object() && !message.contains("method") && message.contains("id");
        if (isAnswer) return;
        if (!isMessage) return SendError(nullptr, code::invalidRequest, "no message of the protocol");
        const std::string method = message["method"].get<std::string>();
        const Json params = message.value("params", Json());
        if (message.contains("id"))
            Request(message["id"], method, params);
        else
            Notification(method, params);
    }

    void Request(const Json& id, const std::string& method, const Json& params) {
        if (inbox.IsCancelled(id)) return SendError(id, code::requestCancelled, "cancelled");
        try {
            if (method == "initialize") return Send({{"id", id}, {"result", Initialize(params)}});
            if (!isInitialized) return SendError(id, code::notInitialized, "initialize comes first");
            if (isShutDown) return SendError(id, code::invalidRequest, "the server is shut down");
            isShutDown = method == "shutdown";
            if (isShutDown) return Send({{"id", id}, {"result", nullptr}});
            const RequestRow* row = RowOf(requestRows, method);
            if (row == nullptr) return SendError(id, code::methodNotFound, "no such method: " + method);
            Send({{"id", id}, {"result", row->answer(workspace, params)}});
        } catch (const Refusal& refusal) {
            SendError(id, code::requestFailed, refusal.what());
        } catch (const Json::exception& problem) {
            SendError(id, code::invalidParams, problem.what());
        } catch (const std::exception& problem) {
            SendError(id, code::internalError, problem.what());
        }
    }

    void Notification(const std::string& method, const Json& params) {
        if (method == "exit") leaves = true;
        if (method == "initialized" && watches) AskToWatch();
        const NotificationRow* row = RowOf(notificationRows, method);
        if (row == nullptr || !isInitialized || isShutDown) return;
        try {
            row->take(workspace, params);
            changed = true;
        } catch (const std::exception&) {  // there is nobody to tell
        }
    }

    void AskToWatch() {
        const Json options = {{"watchers", {{{"globPattern", "**/*.kvl"}}}}};
        const Json registration = {
            {"id", "sources"}, {"method", "workspace/didChangeWatchedFiles"}, {"registerOptions", options}};
        Send({{"id", "watch"},
              {"method", "client/registerCapability"},
              {"params", {{"registrations", Json::array({registration})}}}});
    }

    Json Initialize(const Json& params) {
        if (params.contains("workspaceFolders") && params["workspaceFolders"].is_array())
            for (const Json& folder : params["workspaceFolders"])
                workspace.roots.push_back(PathOfUri(folder.at("uri").get<std::string>()));
        else if (params.contains("rootUri") && params["rootUri"].is_string())
            workspace.roots.push_back(PathOfUri(params["rootUri"].get<std::string>()));
        const Json::json_pointer snippets(
            "/capabilities/textDocument/completion/completionItem/snippetSupport");
        workspace.takesSnippets = params.is_object() && params.value(snippets, false);
        const Json::json_pointer watching(
            "/capabilities/workspace/didChangeWatchedFiles/dynamicRegistration");
        watches = params.is_object() && params.value(watching, false);
        const UnitsRow& row = UnitsOf(params);
        CountIn(row.units);
        isInitialized = true;
        return {{"capabilities", Capabilities(row.name)},
                {"serverInfo", {{"name", "kv lsp"}, {"version", workspace.services.version}}}};
    }

    // Lists are told when they have changed, and those that are gone as empty ones.
    void TellDiagnostics() {
        changed = false;
        std::map<std::string, Json> lists = DiagnosticsOfAll(workspace);
        for (const auto& [uri, list] : told) lists.try_emplace(uri, Json::array());
        for (const auto& [uri, list] : lists) {
            const auto before = told.find(uri);
            if (before != told.end() && before->second == list) continue;
            Json params = {{"uri", uri}, {"diagnostics", list}};
            const auto document = workspace.Documents().find(PathOfUri(uri));
            if (document != workspace.Documents().end() && document->second.version.is_number())
                params["version"] = document->second.version;
            Send({{"method", "textDocument/publishDiagnostics"}, {"params", params}});
        }
        told.clear();
        for (const auto& [path, document] : workspace.Documents()) told[document.uri] = lists[document.uri];
        for (const auto& [uri, list] : lists)
            if (!list.empty()) told[uri] = list;
    }
};

}  // namespace

int Serve(const Services& services, std::FILE* from, std::FILE* to) {
    return Server(services, from, to).Run();
}

}  // namespace lsp
