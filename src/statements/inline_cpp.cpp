#include "statements/inline_cpp.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "lexer/lexer.h"

// The lines are C++, so brackets and quotes are the C++ compiler's business.
void CopyInlineCpp(State& state, const std::function<bool(std::string&)>& next) {
    Lexer lexer;
    std::string line;
    while (true) {
        // The reported line is still that of the block's opener.
        if (!next(line)) ReportFatal("No EndInlinePHP, unexpected end of file.");
        lexer.LexLine(line, false, false, true);
        if (lexer.TokenCount() == 0) continue;
        if (Lower(lexer.tokens.front()) == "endinlinecpp") return;
        PutLine(*state.out, settings.traceMode ? line + " //INLINE" : line);
    }
}
