#include "debug/target.h"

#include <algorithm>

#include "debug/streams.h"

namespace debug {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int restBehindOutput = 10;  // milliseconds
constexpr std::chrono::seconds patience{1};

int Milliseconds(Clock::duration time) {
    return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

}  // namespace

Target::~Target() { End(true); }

void Target::Send(const std::string& text) {
    unsent += text + "\n";
    WriteSome(orders, unsent);  // what the program does not take at once waits: it may be asleep
}

void Target::Pause() {
    Send("pause");
    late = Clock::now() + patience;
}

bool Target::TakeLine(std::string& text) {
    const std::size_t end = unread.find('\n');
    if (end == std::string::npos) return false;
    text = unread.substr(0, end);
    unread.erase(0, end + 1);
    late = Time::max();
    return true;
}

int Target::RestLeft() const {
    return std::max(
        restBehindOutput - Milliseconds(std::min<Clock::duration>(Clock::now() - lastOutput, patience)), 0);
}

// -1: as long as it takes.
int Target::LongestWait(int rest) const {
    if (rest > 0 || late == Time::max()) return rest > 0 ? rest : -1;
    return std::max(Milliseconds(late - Clock::now()) + 1, 0);
}

// Reads, so that much that comes in small pieces is told in few.
bool Target::ReadOutput(int& from, std::string& text) {
    lastOutput = Clock::now();
    return Read(from, text);
}

// Who asks comes before what the program writes, which may have no end; that comes before the program's stop or end.
Target::Event Target::Wait(int client, std::string& text) {
    enum { clientAt, outputAt, errorsAt, lineAt, wardAt, ordersAt };
    text.clear();
    for (;;) {
        if (TakeInterrupt()) return Event::Interrupted;
        const bool isKnown = unread.find('\n') != std::string::npos;
        if (line == -1 && !isKnown) return Event::Ended;
        if (!isKnown && Clock::now() > late) {
            late = Time::max();
            return Event::Late;
        }
        const int rest = isKnown ? 0 : RestLeft();
        const auto toRead = [](int descriptor) { return Awaited{descriptor, false, false}; };
        std::vector<Awaited> all = {toRead(client),
                                    toRead(rest > 0 ? -1 : output),
                                    toRead(rest > 0 ? -1 : errors),
                                    toRead(line),
                                    toRead(ward),
                                    {unsent.empty() ? -1 : orders, true, false}};
        if (!Await(all, isKnown ? 0 : LongestWait(rest)) && !isKnown) continue;
        if (all[clientAt].hasCome) return Event::Client;
        if (all[outputAt].hasCome && ReadOutput(output, text)) return Event::Output;
        if (all[errorsAt].hasCome && ReadOutput(errors, text)) return Event::Errors;
        if (TakeLine(text)) return Event::Line;
        if (all[ordersAt].hasCome) WriteSome(orders, unsent);
        if (all[lineAt].hasCome) {
            lastOutput = {};  // what has been written before is looked for at once
            if (rest == 0 && !Read(line, unread) && line == -1) return Event::Ended;
        }
        if (all[wardAt].hasCome && Read(ward, said) && said == "interrupt\n") {
            said.clear();
            return Event::Interrupted;
        }
        if (process == elsewhere && ward == -1) {  // nobody else could end the program
            Close(line);
            Close(orders);
        }
    }
}

int Target::End(bool kills) {
    if (!IsRunning()) return 0;
    const int status = process == elsewhere ? EndElsewhere(kills) : EndHere(kills);
    process = 0;
    for (int* descriptor : {&line, &orders, &input, &output, &errors, &ward}) Close(*descriptor);
    for (std::string* text : {&unread, &unsent, &said}) text->clear();
    late = Time::max();
    return status;
}

}  // namespace debug
