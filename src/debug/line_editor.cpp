#include "debug/line_editor.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

#ifdef KORVEL_LINE_EDITING
#include <histedit.h>
#endif

namespace debug {

namespace {

// What comes from a pipe is no typing, and the rest of it may be for the program.
bool IsTyped() {
    if (isatty(STDIN_FILENO) != 0) return true;
    std::setvbuf(stdin, nullptr, _IONBF, 0);
    return false;
}

}  // namespace

#ifdef KORVEL_LINE_EDITING

namespace {
const char* shownPrompt = "";
const char* PromptOf(EditLine*) { return shownPrompt; }
}  // namespace

struct LineEditor::Library {
    EditLine* editor = nullptr;
    History* history = nullptr;
    HistEvent event = {};
};

LineEditor::LineEditor() : library(new Library()) {
    if (!IsTyped()) return;
    library->editor = el_init("kv", stdin, stdout, stderr);
    library->history = history_init();
    if (library->editor == nullptr || library->history == nullptr) return;
    history(library->history, &library->event, H_SETSIZE, 1000);
    history(library->history, &library->event, H_SETUNIQUE, 1);
    el_set(library->editor, EL_PROMPT, PromptOf);
    el_set(library->editor, EL_EDITOR, "emacs");
    el_set(library->editor, EL_HIST, history, library->history);
    el_set(library->editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
}

LineEditor::~LineEditor() {
    if (library->history != nullptr) history_end(library->history);
    if (library->editor != nullptr) el_end(library->editor);
}

#else

struct LineEditor::Library {
    void* editor = nullptr;
};
LineEditor::LineEditor() : library(new Library()) { IsTyped(); }
LineEditor::~LineEditor() = default;

#endif

bool LineEditor::Read(const char* prompt, std::string& line) {
    line.clear();
#ifdef KORVEL_LINE_EDITING
    if (library->editor != nullptr) {
        int count = 0;
        const char* typed = nullptr;
        shownPrompt = prompt;
        do {  // once more behind Ctrl-C
            errno = 0;
            typed = el_gets(library->editor, &count);
        } while (typed == nullptr && errno == EINTR);
        if (typed == nullptr || count <= 0) return false;
        line.assign(typed, static_cast<std::size_t>(count));
        if (line.size() > 1) history(library->history, &library->event, H_ENTER, line.c_str());
        if (line.back() == '\n') line.pop_back();
        return true;
    }
#endif
    std::printf("%s", prompt);
    std::fflush(stdout);
    int c = std::getc(stdin);
    const bool any = c != EOF;
    for (; c != EOF && c != '\n'; c = std::getc(stdin)) line += static_cast<char>(c);
    return any;
}

}  // namespace debug
