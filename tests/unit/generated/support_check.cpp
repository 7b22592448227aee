// Compiled by prelude_test.cpp against the texts of src/prelude/texts, under the sanitizers. Prints the
// checks that fail and ends with their number.
#include "all_texts.h"

static int failures = 0;
static void Check(bool ok, const char* what, int line) {
    if (ok) return;
    std::cout << "line " << line << ": " << what << std::endl;
    ++failures;
}
#define CHECK(condition) Check(condition, #condition, __LINE__)

struct KVL_TPoint {
    int KVL_x = 0;
    std::string KVL_name = "a name that does not fit into the string itself";
    bool operator==(const KVL_TPoint& o) const { return KVL_x == o.KVL_x; }
    int KVL_Compare(KVL_TPoint o) { return KVL_x - o.KVL_x; }
};

static int Sum(int* items, int n) { return n == 0 ? 0 : items[n - 1] + Sum(items, n - 1); }
static int Corner(int** rows, int n, int m) { return rows[n - 1][m - 1]; }
static int Corner(int*** planes, int n) { return planes[n - 1][n - 1][n - 1]; }
static void Flip(bool* flags) { flags[1] = !flags[1]; }
static int FirstX(KVL_TPoint** points) { return points[0]->KVL_x++; }

static int* MakeRow(int n) {
    int* row = __kvNewArray<int>(n);
    for (int i = 0; i < n; ++i) row[i] = i;
    return row;
}

static void CheckArrays() {
    std::vector<int> row = __kvTakeArray(MakeRow(4));
    CHECK(row.size() == 4 && Sum(row.data(), 4) == 6);
    CHECK(Sum(__kvItems(__kvTakeArray(MakeRow(3))), 3) == 3);
    CHECK(__kvTakeArray(MakeRow(0)).empty() && __kvTakeArray(__kvNewArray<double>(-1)).empty());

    std::string** texts = __kvNewArray2<std::string>(2, 3);
    texts[1][2] = "a text that does not fit into the string itself";
    std::vector<std::vector<std::string>> table = __kvTakeArray2(texts);
    CHECK(table.size() == 2 && table[1].size() == 3 && table[1][2][0] == 'a' && table[0][0].empty());

    int*** cube = __kvNewArray3<int>(2, 2, 2);
    cube[1][1][1] = 7;
    std::vector<std::vector<std::vector<int>>> taken = __kvTakeArray3(cube);
    CHECK(Corner(__kvRows(taken), 2) == 7);
    std::vector<std::vector<int>> grid(2, std::vector<int>(3, 5));
    CHECK(Corner(__kvRows(grid), 2, 3) == 5 &&
          Corner(__kvRows(__kvTakeArray2(__kvNewArray2<int>(2, 2))), 2, 2) == 0);
    int fixed[2][2] = {{1, 2}, {3, 4}};
    int deep[2][2][2] = {{{1, 2}, {3, 4}}, {{5, 6}, {7, 8}}};
    CHECK(Corner(__kvRows(fixed), 2, 2) == 4 && Corner(__kvRows(deep), 2) == 8);
}

static void CheckBools() {
    std::vector<KVBool> flags(3);
    Flip((bool*)flags.data());
    Flip(__kvItems(flags));
    flags[0] = true;
    flags[2] = flags[0];
    std::ostringstream out;
    out << flags[0] << flags[1] << (flags[0] ? "yes" : "no");
    CHECK(out.str() == "10yes" && flags[0] == true && flags[0] != flags[1] && flags[2] == 1 && !flags[1]);
    CHECK(flags[0] && (flags[1] || flags[2]) && flags[0] + flags[2] == 2);
    bool* made = __kvNewArray<bool>(2);
    made[1] = true;
    std::vector<KVBool> taken = __kvTakeArray(made);
    CHECK(!taken[0] && taken[1] && taken == std::vector<KVBool>(taken));
    std::vector<std::vector<KVBool>> board(2, std::vector<KVBool>(2));
    bool** rows = __kvRows(board);
    (void)rows;
    for (auto& flag : flags) flag = false;
    CHECK(flags[0] == flags[1]);
}

static void CheckSlots() {
    std::vector<KVSlot<KVL_TPoint>> points(2);
    points[0]->KVL_x = 3;
    std::vector<KVSlot<KVL_TPoint>> copy = points;
    CHECK(copy == points);
    CHECK(FirstX(__kvItems(points)) == 3 && FirstX(reinterpret_cast<KVL_TPoint**>(points.data())) == 4);
    CHECK(!(copy == points) && copy[0]->KVL_x == 3);
    KVL_TPoint value = *points[0];
    *copy[1] = value;
    copy[0] = copy[1];
    CHECK(copy[0] == points[0] && static_cast<KVL_TPoint*>(copy[0]) != static_cast<KVL_TPoint*>(copy[1]));
    points.resize(5);

    KVL_TPoint** made = __kvNewArray<KVL_TPoint*>(2);
    for (int i = 0; i < 2; ++i) made[i] = new KVL_TPoint();
    made[1]->KVL_x = 9;
    std::vector<KVSlot<KVL_TPoint>> taken = __kvTakeSlots(made);
    CHECK(taken.size() == 2 && taken[1]->KVL_x == 9);
    std::vector<std::vector<KVSlot<KVL_TPoint>>> board(2, std::vector<KVSlot<KVL_TPoint>>(2));
    KVL_TPoint*** none = __kvNewArray2<KVL_TPoint*>(2, 0);
    CHECK(__kvTakeSlots2(none).size() == 2 && FirstX(static_cast<KVL_TPoint***>(__kvRows(board))[1]) == 0);
}

static void CheckSelect() {
    const std::string blue = "blue";
    const std::string long2000(2000, 'x');
    const char* texts[] = {"red", "", "blue", "\xc3\xa4", long2000.c_str()};
    for (int i = 0; i < 5; ++i)
        CHECK(__kvSelect(std::string(texts[i]), {"red", "", blue, "\xc3\xa4", long2000}) == i);
    CHECK(__kvSelect(std::string("re"), {"red", ""}) == -1 && __kvSelect(blue, {}) == -1);
    CHECK(__kvSelect(-0.0, {1.5, 0.0}) == 1 && __kvSelect(0.1 + 2e-17, {0.1, (double)16}) == -1);
    CHECK(__kvSelect(NAN, {0.1, 0.0}) == -1 && __kvSelect(16.0, {}) == -1);
}

static void CheckSafety() {
    std::vector<std::vector<int>> grid(2, std::vector<int>(3, 5));
    std::vector<int> row(2, 1);
    __kvAt("grid", grid, 1, 2, 2, 3) = 8;
    __kvAt("row", row.data(), __kvAt("row", row, 0, 2), 2) = 4;
    CHECK(grid[1][2] == 8 && row[1] == 4 && row[__kvCheckIndex(1, 2, "row", 0, 1)] == 4);
    CHECK(KVL_SafeDiv(7, 2) == 3 && KVL_SafeDiv(7, 2.0) == 3.5 && KVL_SafeDiv(7.0f, 2) == 3.5);
    CHECK(KVL_SafeMod(7, 4) == 3 && KVL_SafeMod(7.5, 2) == 1.5 && KVL_SafeMod(7.5, 2.0) == 1.5);
    CHECK(KVL_SafeMod(7000000000007LL, 10) == 7 && KVL_SafeDiv((unsigned char)9, 2) == 4);
}

static void CheckSequences() {
    KVSeq<int> numbers;
    for (int n : {5, 1, 4}) numbers.Add(n);
    numbers.InsertAt(-5, 9);
    numbers.InsertAt(99, 2);
    numbers.SortNatural(true);
    CHECK(numbers.First() == 1 && numbers.Last() == 9 && numbers.Next() == 0 && numbers.Before() == 9);
    CHECK(numbers.Get(5) == 0 && numbers.Find(4) == 2 && numbers.Contains(7) == 0 &&
          numbers.RemoveLast() == 9);
    KVSeq<bool> flags;
    flags.Add(true);
    flags.Add(false);
    flags.SortNatural(true);
    CHECK(!flags.Get(0) && flags.Last());
    KVSeq<KVL_TPoint> points;
    KVL_TPoint point;
    for (int x : {2, 3, 1}) point.KVL_x = x, points.Add(point);
    points.SortCompare(false);
    CHECK(points.First().KVL_x == 3 && points.Last().KVL_x == 1 && points.Find(point) == 2);
    CHECK(__kvAllSeqs().size() == 3);
}

class KVL_TMob {
public:
    static std::vector<KVL_TMob*> _instances;
#include "class_closing.h"

    static void CheckClass() {
        KVSeq<KVL_TMob*> list;
        KVL_TMob *a = new KVL_TMob(), *b = new KVL_TMob(), *c = new KVL_TMob();
        list.Add(b);
        c->InsertBefore(a);
        CHECK(KVL_TMob::First() == c && c->After() == a && a->Before() == c && KVL_TMob::Last() == b);
        delete b;
        CHECK(KVL_TMob::Last() == a && list.Length() == 1 && list.First() == nullptr);
        CHECK(__Before__(KVL_TMob::_instances, a) == c && __After__(KVL_TMob::_instances, c) == a);
        a->InsertAfter(nullptr);
        delete a;
        delete c;
        CHECK(KVL_TMob::First() == nullptr);
    }

    static int ticks = 0;
    static void CheckTimers() {
        __kvAutoCall(
            "Tick",
            []() {
                ++ticks;
                __kvSchedPoll();
            },
            -5, true);
        __kvAutoCall(
            "Tock", []() { ticks += 100; }, 0, false);
        __kvSchedPoll();
        __kvSchedPoll();
        CHECK(ticks == 102 && __kvTimers().size() == 1);
        __kvStopCall("");
        __kvSchedPoll();
        CHECK(ticks == 102);
    }

    int main(int argc, char** argv) {
        const std::string what = argc > 1 ? argv[1] : "";
        if (what == "index") return __kvCheckIndex(12, 10, "a", 0, 1);
        if (what == "first") {
            std::vector<std::vector<int>> m(5, std::vector<int>(2));
            return __kvAt("m", m, 7, 5, 9, 2);
        }
        if (what == "second") {
            std::vector<std::vector<int>> m(5, std::vector<int>(2));
            return __kvAt("m", m, 4, 5, -1, 2);
        }
        if (what == "divide") return KVL_SafeDiv(1.0, 0);
        if (what == "modulo") return KVL_SafeMod(1.5, 0);
        CheckArrays();
        CheckBools();
        CheckSlots();
        CheckSelect();
        CheckSafety();
        CheckSequences();
        CheckClass();
        CheckTimers();
        return failures;
    }
