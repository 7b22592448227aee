// Class bodies and routines: who has to stand behind whose body.
#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/report.h"
#include "base/settings.h"
#include "prelude/order.h"

namespace {

using Kind = Piece::Kind;
using ClassSet = std::unordered_set<const ClassInfo*>;
using FilesBySource = std::unordered_map<std::string, FileOutput*>;

using PieceVisit = std::function<void(FileOutput&, Piece&)>;

// `unseen` holds the files that have not been visited yet.
void ForEachPiece(FileOutput& file, FilesBySource& unseen, const PieceVisit& visit) {
    if (unseen.erase(file.source) == 0 || file.headerOnly) return;
    for (Piece& piece : file.pieces) {
        const auto included = piece.kind == Kind::Include ? unseen.find(piece.rest.Get().file) : unseen.end();
        if (included != unseen.end()) ForEachPiece(*included->second, unseen, visit);
        visit(file, piece);
    }
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

// Puts what a class holds by value before it: the bodies that are met too late move, all at once.
class ClassPlacer {
public:
    explicit ClassPlacer(Program& p) : program(p) {
        ForEachPiece(program, [this](FileOutput& file, Piece& piece) { Note(file, piece); });
    }

    void Run() {
        for (const ClassInfo* cls : order) Place(cls);
        if (bodies.empty()) return;
        for (FileOutput& file : program.files) TakeBodies(file);
        for (FileOutput& file : program.files) InsertBodies(file);
    }

private:
    Program& program;
    std::unordered_map<const ClassInfo*, Layout> layouts;
    std::vector<const ClassInfo*> order;  // as the bodies stand
    ClassSet met;
    std::unordered_map<const ClassInfo*, std::vector<const ClassInfo*>> movedBefore;
    std::unordered_map<const ClassInfo*, std::vector<Piece>> bodies;  // of those that move

    void Note(FileOutput& file, Piece& piece) {
        if (!InClassBody(piece) || piece.kind == Kind::Method) return;
        Layout& layout = layouts[piece.cls];
        if (piece.kind == Kind::ClassOpen) {
            layout.file = &file;
            order.push_back(piece.cls);
        }
        layout.needs.insert(layout.needs.end(), piece.needs.begin(), piece.needs.end());
    }

    // What `cls` holds by value and what that holds, as far as it has not been met so far, moves before `cls`,
    // the innermost first. Elements that contain themselves were refused by the first pass, so this ends.
    void Place(const ClassInfo* cls) {
        if (!met.insert(cls).second) return;
        struct Step {
            const ClassInfo* cls;
            std::size_t next;
        };
        std::vector<Step> way = {{cls, 0}};
        while (!way.empty()) {
            Step& step = way.back();
            const std::vector<const ClassInfo*>& needs = layouts[step.cls].needs;
            if (step.next < needs.size()) {
                const ClassInfo* need = needs[step.next++];
                if (layouts.count(need) != 0 && met.insert(need).second) way.push_back({need, 0});
                continue;
            }
            if (way.size() > 1) movedBefore[cls].push_back(step.cls);
            if (way.size() > 1) bodies[step.cls];
            way.pop_back();
        }
    }

    void TakeBodies(FileOutput& file) {
        std::deque<Piece> left;
        for (Piece& piece : file.pieces) {
            const auto body = InClassBody(piece) ? bodies.find(piece.cls) : bodies.end();
            const bool moves = body != bodies.end() && layouts[piece.cls].file == &file;
            if (moves)
                body->second.push_back(std::move(piece));
            else
                left.push_back(std::move(piece));
        }
        file.pieces = std::move(left);
    }

    void InsertBodies(FileOutput& file) {
        std::deque<Piece> all;
        for (Piece& piece : file.pieces) {
            const auto moved =
                piece.kind == Kind::ClassOpen ? movedBefore.find(piece.cls) : movedBefore.end();
            if (moved != movedBefore.end())
                for (const ClassInfo* cls : moved->second)
                    std::move(bodies[cls].begin(), bodies[cls].end(), std::back_inserter(all));
            all.push_back(std::move(piece));
        }
        file.pieces = std::move(all);
    }
};

bool AllDefined(const Piece& piece, const ClassSet& defined) {
    return std::all_of(piece.needs.begin(), piece.needs.end(), [&](const ClassInfo* cls) {
        return cls == piece.cls || defined.count(cls) != 0 || !cls->registered;
    });
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

void ForEachPiece(Program& program, const PieceVisit& visit) {
    FilesBySource unseen;
    for (FileOutput& file : program.files) unseen.emplace(file.source, &file);
    ForEachPiece(*program.main, unseen, visit);
}

Piece TakeMethodBody(Piece& method) {
    Piece body;
    body.kind = Kind::Function;
    body.rest = std::move(method.rest);
    const std::string& head = body.rest.Get().definitionHead;
    body.text = head + "\n" + method.text.substr(method.braceAt);
    if (!body.rest.Get().partPaths.empty())
        for (PartPath& part : body.rest.Make().partPaths) part.at += head.size() + 1 - method.braceAt;
    method.text.resize(method.signatureEnd);
    method.text += ";\n";
    return body;
}

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
        if (piece.kind == Kind::Method && !piece.rest.Get().definitionHead.empty())
            late.push_back(TakeMethodBody(piece));
        bool routine = piece.kind == Kind::Function || piece.kind == Kind::Main;
        if (!routine || (&file == program.main && piece.kind == Kind::Main)) return;
        late.push_back(std::exchange(piece, Piece()));
    });
    for (Piece& piece : late)
        if (!piece.rest.Get().partPaths.empty())
            RewritePartPaths(*program.main, piece.text, piece.rest.Make().partPaths);
    auto& pieces = program.main->pieces;
    pieces.insert(pieces.end(), late.begin(), late.end());
}
