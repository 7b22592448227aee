#include "lexer/source_lines.h"

#include <filesystem>
#include <unordered_map>

#include "base/parallel.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/utf8.h"

namespace {

// The files that have been cut, by path as opened; null for those that cannot be read.
std::unordered_map<std::string, std::shared_ptr<CutFile>> cutFiles;
std::unordered_map<std::string, std::shared_ptr<CutFile>> cutAgain;  // of those whose lines are forgotten
const PartOfRun partOfRun(cutFiles, cutAgain);

std::shared_ptr<CutFile> Cut(const std::string& path) {
    auto file = std::make_shared<CutFile>();
    LineCutter cutter(*file);
    if (!cutter.Open(path)) return nullptr;
    do cutter.CutNext();
    while (!file->lines.back().isEnd);
    file->lines.shrink_to_fit();
    file->statements.shrink_to_fit();
    file->tokens.shrink_to_fit();
    return file;
}

std::shared_ptr<CutFile> WithLines(const std::string& path) {
    const std::shared_ptr<CutFile>& file = cutFiles.at(path);
    if (file == nullptr || !file->lines.empty()) return file;
    const auto [again, isNew] = cutAgain.emplace(path, nullptr);
    if (isNew) again->second = Cut(path);
    return again->second;
}

}  // namespace

void ForgetLines(const std::string& path) {
    const auto found = cutFiles.find(path);
    if (found == cutFiles.end() || found->second == nullptr) return;
    std::vector<CutLine>().swap(found->second->lines);
    std::vector<CutStatement>().swap(found->second->statements);
}

void ForgetTokens() {
    cutFiles.clear();
    cutAgain.clear();
}

void CutFiles(const std::vector<std::string>& paths) {
    std::vector<std::pair<const std::string, std::shared_ptr<CutFile>>*> added;
    for (const std::string& path : paths)
        if (const auto [file, isNew] = cutFiles.emplace(path, nullptr); isNew) added.push_back(&*file);
    const auto cut = [&added](std::size_t i) { added[i]->second = Cut(added[i]->first); };
    if (added.size() > 1)
        InParallel(added.size(), cut);
    else if (!added.empty())
        cut(0);
    ForgetOutgrownTables();
}

bool SourceLines::Open(const std::string& name) {
    path = name;
    CutFiles({path});
    file = WithLines(path);
    const bool hasReports = file != nullptr && (!file->lexed.empty() || file->trouble.message != nullptr ||
                                                file->splitTrouble.message != nullptr);
    reports = hasReports && (reading == Reading::FirstPass || reading == Reading::SecondPass);
    return file != nullptr;
}

bool SourceLines::IsWanted(const CutLine& entered) const {
    if (entered.isEnd || reading == Reading::SecondPass) return true;
    if (reading != Reading::Uses) return entered.declares;
    return entered.statementsEnd > statementsRead;
}

void SourceLines::Enter(const CutLine& entered) {
    while (onInlineCpp && inlineRead < entered.inlineEnd) onInlineCpp(file->inlineLines[inlineRead++]);
    statements = LineStatements(*file, statementsRead, entered.statementsEnd);
    line = entered;
}

void SourceLines::ShowLexed() {
    for (; nextLexed < file->lexed.size() && file->lexed[nextLexed].line == next; ++nextLexed) {
        const LexedText& lexed = file->lexed[nextLexed];
        ShowLine(reading == Reading::FirstPass ? lexed.count : lexed.physical, lexed.isPiece, lexed.text);
    }
}

void SourceLines::ReportTrouble(const CutTrouble& trouble) const {
    if (trouble.message == nullptr || trouble.line != next) return;
    ShowTrouble({trouble.message, trouble.openParentheses});
    FailInLine(path, trouble.count, trouble.message, trouble.text);
}

void SourceLines::Report() {
    ShowLexed();
    ReportTrouble(file->trouble);
    if (reading == Reading::SecondPass) ReportTrouble(file->splitTrouble);
}

bool SourceLines::Next() {
    metInlineCpp = false;
    for (bool found = line.isEnd; !found; ++next) {
        if (reports) Report();
        const CutLine& entered = file->lines[next];
        metInlineCpp = metInlineCpp || entered.afterInline;
        found = IsWanted(entered);
        if (found) Enter(entered);
        statementsRead = entered.statementsEnd;
    }
    return !line.isEnd;
}

const std::string& SourceLines::Comment() const {
    static const std::string none;
    return file->comments.empty() ? none : file->comments[next - 1];
}

TokenSpan TokensOf(const std::string& file) {
    const auto found = cutFiles.find(file);
    return found == cutFiles.end() || found->second == nullptr ? TokenSpan()
                                                               : TokenSpan(found->second->tokens);
}

std::uint64_t HashOfFile(const std::string& file) {
    const auto found = cutFiles.find(file);
    return found == cutFiles.end() || found->second == nullptr ? 0 : found->second->hash;
}

std::string FileWithToken(const Token* token, std::size_t& index) {
    const std::less<> before;
    for (const auto& [path, file] : cutFiles) {
        if (file == nullptr || file->tokens.empty()) continue;
        const Token* first = file->tokens.data();
        if (before(token, first) || !before(token, first + file->tokens.size())) continue;
        index = static_cast<std::size_t>(token - first);
        return path;
    }
    return {};
}

// True when normalising the path would leave it as it is, which needs no looking at its parts.
static bool IsNormal(const std::string& path) {
    if (path.empty() || path.front() == '.' || path.find('\\') != std::string::npos) return false;
    for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        const char next = slash + 1 < path.size() ? path[slash + 1] : '/';
        if (next == '/' || next == '.') return false;
    }
    return true;
}

std::string FileId(const std::string& path) {
    if (IsNormal(path)) return path;
    return GenericTextOf(PathOf(path).lexically_normal());
}
