// Class bodies and routines: who has to stand behind whose body.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "driver/report.h"
#include "driver/settings.h"
#include "prelude/order.h"

namespace {

using Kind = Piece::Kind;
using ClassSet = std::unordered_set<const ClassInfo*>;
using FilesBySource = std::unordered_map<std::string, FileOutput*>;

// `unseen` holds the files that have not been visited yet.
template <typename Visit>
void ForEachPiece(FileOutput& file, FilesBySource& unseen, Visit& visit) {
    if (unseen.erase(file.source) == 0 || file.headerOnly) return;
    for (Piece& piece : file.pieces) {
        const auto included = piece.kind == Kind::Include ? unseen.find(piece.file) : unseen.end();
        if (included != unseen.end()) ForEachPiece(*included->second, unseen, visit);
        visit(file, piece);
    }
}

// Calls visit(file, piece) for every piece in the order in which the C++ compiler sees them.
template <typename Visit>
void ForEachPiece(Program& program, Visit visit) {
    FilesBySource unseen;
    for (FileOutput& file : program.files) unseen.emplace(file.source, &file);
    ForEachPiece(*program.main, unseen, visit);
}

bool InClassBody(const Piece& piece) {
    return piece.kind == Kind::ClassOpen || piece.kind == Kind::ClassLines || piece.kind == Kind::Method ||
           piece.kind == Kind::ClassClose;
}

// What the layout of each class needs: the bodies of the Elements that it holds by value.
struct Layout {
    FileOutput* file = nullptr;
    std::vector<const ClassInfo*> needs;
};

class ClassPlacer {
public:
    explicit ClassPlacer(Program& program) {
        ForEachPiece(program, [this](FileOutput& file, Piece& piece) { Note(file, piece); });
    }

    void Run() {
        for (const ClassInfo* cls : order) Place(cls, nullptr);
    }

private:
    std::unordered_map<const ClassInfo*, Layout> layouts;
    std::vector<const ClassInfo*> order;  // as the bodies stand
    ClassSet met;

    void Note(FileOutput& file, Piece& piece) {
        if (!InClassBody(piece) || piece.kind == Kind::Method) return;
        Layout& layout = layouts[piece.cls];
        if (piece.kind == Kind::ClassOpen) {
            layout.file = &file;
            order.push_back(piece.cls);
        }
        layout.needs.insert(layout.needs.end(), piece.needs.begin(), piece.needs.end());
    }

    // Elements that contain themselves were refused by the first pass, so this ends.
    // Places `cls` before `user` when that one stands earlier, then what it holds by value before `cls`.
    void Place(const ClassInfo* cls, const ClassInfo* user) {
        if (!met.insert(cls).second) return;
        if (user != nullptr) MoveBefore(cls, user);
        for (const ClassInfo* need : layouts[cls].needs)
            if (need != cls && layouts.count(need) != 0) Place(need, cls);
    }

    void MoveBefore(const ClassInfo* cls, const ClassInfo* user) {
        FileOutput& from = *layouts[cls].file;
        FileOutput& to = *layouts[user].file;
        auto ofClass = [cls](const Piece& p) { return InClassBody(p) && p.cls == cls; };
        std::deque<Piece> body;
        std::copy_if(from.pieces.begin(), from.pieces.end(), std::back_inserter(body), ofClass);
        from.pieces.erase(std::remove_if(from.pieces.begin(), from.pieces.end(), ofClass), from.pieces.end());
        auto before = std::find_if(to.pieces.begin(), to.pieces.end(), [user](const Piece& p) {
            return p.kind == Kind::ClassOpen && p.cls == user;
        });
        to.pieces.insert(before, body.begin(), body.end());
        layouts[cls].file = &to;
    }
};

bool AllDefined(const Piece& piece, const ClassSet& defined) {
    return std::all_of(piece.needs.begin(), piece.needs.end(), [&](const ClassInfo* cls) {
        return cls == piece.cls || defined.count(cls) != 0 || !cls->registered;
    });
}

// A Method whose body has to wait leaves its declaration behind.
Piece TakeMethodBody(Piece& piece) {
    Piece body;
    body.kind = Kind::Function;
    body.text = piece.definitionHead + "\n" + piece.text.substr(piece.braceAt);
    piece.text = piece.declaration;
    return body;
}

// A file that gives its header only leaves its class bodies out.
void RefuseDroppedClasses(Program& program) {
    ClassSet dropped;
    for (const FileOutput& file : program.files)
        for (const Piece& piece : file.pieces)
            if (file.headerOnly && piece.kind == Kind::ClassOpen) dropped.insert(piece.cls);
    if (dropped.empty()) return;
    ForEachPiece(program, [&dropped](FileOutput&, Piece& piece) {
        for (const ClassInfo* cls : piece.needs) {
            if (dropped.count(cls) == 0) continue;
            settings.currentFile = cls->sourceFile;
            settings.currentLine = cls->line;
            const std::string kind = cls->isElement ? "Element" : "Type";
            ReportFatal(
                "'" + cls->name +
                "' is used, but a file in a folder ending in .kvh gives its declarations only. Move the " +
                kind + " to another folder");
        }
    });
}

}  // namespace

void OrderClasses(Program& program) {
    RefuseDroppedClasses(program);
    ClassPlacer(program).Run();
}

void OrderRoutines(Program& program) {
    ClassSet defined;
    std::deque<Piece> late;
    ForEachPiece(program, [&](FileOutput& file, Piece& piece) {
        if (piece.kind == Kind::ClassClose) defined.insert(piece.cls);
        if (AllDefined(piece, defined)) return;
        if (piece.kind == Kind::Method && !piece.definitionHead.empty())
            late.push_back(TakeMethodBody(piece));
        bool routine = piece.kind == Kind::Function || piece.kind == Kind::Main;
        if (!routine || (&file == program.main && piece.kind == Kind::Main)) return;
        late.push_back(std::exchange(piece, Piece()));
    });
    auto& pieces = program.main->pieces;
    pieces.insert(pieces.end(), late.begin(), late.end());
}
