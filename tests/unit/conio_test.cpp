// The console calls that Linux gets from include/conio.h: keys of a terminal, keys from a pipe, line input beside
// them, and the state in which the terminal is left.
#ifndef _WIN32

#include "../../include/conio.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

#include <chrono>
#include <string>
#include <thread>

namespace {

// What GetKey becomes in a translated program.
int GetKey() {
    return (_kbhit() ? [&]() {
        int ch = _getch();
        if (ch == 0 || ch == 224) {
            ch = _getch();
            return -ch;
        }
        return ch;
    }()
                     : 0);
}

int WaitForKey() {
    int key = 0;
    while ((key = GetKey()) == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return key;
}

TEST(ConsoleKeys, Decode) {
    const struct {
        std::string bytes;
        bool complete;
        std::size_t size;
        int first, second;
    } rows[] = {
        {"a", false, 1, 'a', -1},
        {"\r", false, 1, 13, -1},
        {"\n", false, 1, 13, -1},
        {"\x7f", false, 1, 8, -1},
        {"\b", false, 1, 8, -1},
        {std::string(1, '\0'), false, 1, 0, 3},
        {"\x1b", false, 0, -1, -1},  // Esc, or the start of a sequence: time tells
        {"\x1b", true, 1, 27, -1},
        {"\x1bx", false, 1, 27, -1},
        {"\x1b\x1b", false, 1, 27, -1},
        {"\x1b[", false, 0, -1, -1},
        {"\x1b[", true, 1, 27, -1},
        {"\x1b[A", false, 3, 224, 72},
        {"\x1b[B", false, 3, 224, 80},
        {"\x1bOC", false, 3, 224, 77},
        {"\x1b[D~", false, 3, 224, 75},
        {"\x1b[H", false, 3, 224, 71},
        {"\x1bOF", false, 3, 224, 79},
        {"\x1b[1~", false, 4, 224, 71},
        {"\x1b[2~", false, 4, 224, 82},
        {"\x1b[3~", false, 4, 224, 83},
        {"\x1b[4~", false, 4, 224, 79},
        {"\x1b[5~", false, 4, 224, 73},
        {"\x1b[6~", false, 4, 224, 81},
        {"\x1b[1;5C", false, 6, 224, 77},  // with Ctrl
        {"\x1bOP", false, 3, 0, 59},
        {"\x1b[[B", false, 4, 0, 60},
        {"\x1b[15~", false, 5, 0, 63},
        {"\x1b[17~", false, 5, 0, 64},
        {"\x1b[21~", false, 5, 0, 68},
        {"\x1b[23~", false, 5, 224, 133},
        {"\x1b[24;2~", false, 7, 224, 134},
        {"\x1b[200~", false, 6, -1, -1},  // no key
        {"\x1b[99999999999999~", false, 17, -1, -1},
        {"\xc3\xa4", false, 1, 0xc3, -1},
        {"\xe0\xa4\x85x", false, 3, '?', -1},
        {"\xe0x", true, 1, '?', -1},
    };
    for (const auto& row : rows) {
        const kvconio::Key key = kvconio::DecodeKey(row.bytes.data(), row.bytes.size(), row.complete);
        EXPECT_EQ(key.size, row.size) << testing::PrintToString(row.bytes);
        EXPECT_EQ(key.first, row.first) << testing::PrintToString(row.bytes);
        EXPECT_EQ(key.second, row.second) << testing::PrintToString(row.bytes);
    }
}

const char* ModeOfTerminal() {
    struct termios modes;
    if (tcgetattr(STDIN_FILENO, &modes) != 0) return "none";
    const bool lines = (modes.c_lflag & ICANON) && (modes.c_lflag & ECHO) && (modes.c_iflag & ICRNL);
    return lines ? "lines" : "keys";
}

// A terminal whose user is the test. In it a small shell runs one program and says when it stops or ends.
class Terminal {
public:
    explicit Terminal(void (*program)()) : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
        grantpt(master_);
        unlockpt(master_);
        std::cout.flush();
        shell_ = fork();
        if (shell_ == 0) RunShell(program);
    }

    ~Terminal() {
        kill(-shell_, SIGKILL);
        waitpid(shell_, nullptr, 0);
        close(master_);
    }

    void Type(const std::string& keys) {
        ASSERT_EQ(write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    // Reads what appears on the screen up to the text. Nothing typed as "hidden" may show.
    void Expect(const std::string& text) {
        std::size_t end = 0;
        while ((end = shown_.find(text)) == std::string::npos) {
            struct pollfd output = {master_, POLLIN, 0};
            char bytes[256];
            const ssize_t count = poll(&output, 1, 5000) > 0 ? read(master_, bytes, sizeof bytes) : 0;
            ASSERT_GT(count, 0) << "waited for " << text << "\nshown: " << testing::PrintToString(shown_);
            shown_.append(bytes, static_cast<std::size_t>(count));
        }
        EXPECT_EQ(shown_.find("hidden"), std::string::npos) << testing::PrintToString(shown_);
        shown_.erase(0, end + text.size());
    }

    // Waits until the program reads lines, or keys.
    void AwaitLineMode(bool wanted) const {
        struct termios modes;
        for (int waited = 0; waited < 5000; ++waited) {
            if (tcgetattr(master_, &modes) == 0 && ((modes.c_lflag & ICANON) != 0) == wanted) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ADD_FAILURE() << "the terminal is in the wrong mode";
    }

private:
    [[noreturn]] void RunShell(void (*program)()) const {
        setsid();
        const int screen = open(ptsname(master_), O_RDWR);
        ioctl(screen, TIOCSCTTY, 0);
        for (int descriptor = 0; descriptor < 3; ++descriptor) dup2(screen, descriptor);
        signal(SIGTTOU, SIG_IGN);
        const pid_t child = fork();
        if (child == 0) {
            setpgid(0, 0);
            tcsetpgrp(STDIN_FILENO, getpid());
            for (const int number : {SIGTTOU, SIGINT, SIGHUP, SIGTSTP}) signal(number, SIG_DFL);
            program();
            std::exit(5);
        }
        setpgid(child, child);
        tcsetpgrp(STDIN_FILENO, child);
        int status = 0;
        while (waitpid(child, &status, WUNTRACED) == child && WIFSTOPPED(status)) {
            std::printf("[stopped: %s]", ModeOfTerminal());
            std::fflush(stdout);
            kill(-child, SIGCONT);
        }
        std::printf("[%s %d: %s]", WIFSIGNALED(status) ? "signal" : "status",
                    WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status), ModeOfTerminal());
        std::fflush(stdout);
        _exit(0);
    }

    int master_;
    pid_t shell_;
    std::string shown_;
};

void ShowKeys() {
    GetKey();
    std::cout << "[ready]";
    for (int key = 0; key != 'q';) {
        key = WaitForKey();
        std::cout << "<" << key << ">";
    }
}

TEST(ConsoleTerminal, KeysComeOneByOneUnechoed) {
    Terminal terminal(ShowKeys);
    terminal.Expect("[ready]");
    terminal.Type("hidden");
    terminal.Expect("<110>");
    terminal.Type("\r\x7f\x1b[A\x1bOP\x1b[24~\x1b[200~");
    terminal.Expect("<13><8><-72><-59><-134>");
    terminal.Type("\x1b");
    terminal.Expect("<27>");
    terminal.Type("q");
    terminal.Expect("<113>");
    terminal.Expect("[status 5: lines]");
}

void AskBetweenKeys() {
    GetKey();
    std::cout << "[ready]";
    WaitForKey();
    std::string name;
    std::cout << "name? " << ModeOfTerminal() << std::flush;
    std::getline(std::cin, name);
    int number = 0;
    std::cin >> number;
    std::cin.ignore(1000, '\n');
    std::cout << "{" << name << number << "}" << ModeOfTerminal();
    std::cout << "<" << WaitForKey() << ">" << ModeOfTerminal();
}

TEST(ConsoleTerminal, LinesAreEchoedAndEdited) {
    Terminal terminal(AskBetweenKeys);
    terminal.Expect("[ready]");
    terminal.Type("x");
    terminal.Expect("name? keys");
    terminal.AwaitLineMode(true);
    terminal.Type(
        "Box\x7f"
        "b\n");
    terminal.Expect("Box");
    terminal.Type("42\n");
    terminal.Expect("{Bob42}lines");
    terminal.AwaitLineMode(false);
    terminal.Type("k");
    terminal.Expect("<107>keys");
    terminal.Expect("[status 5: lines]");
}

void EndBy(int number) {
    GetKey();
    std::cout << ModeOfTerminal() << std::flush;
    raise(number);
}

TEST(ConsoleTerminal, SignalsGiveTheTerminalBack) {
    Terminal([] { EndBy(SIGTERM); }).Expect("keys[signal 15: lines]");
    Terminal([] { EndBy(SIGHUP); }).Expect("keys[signal 1: lines]");
    Terminal([] { signal(SIGABRT, SIG_DFL), GetKey(), std::abort(); }).Expect("[signal 6: lines]");
    Terminal([] {
        EndBy(SIGTSTP), std::cout << "on" << GetKey() << ModeOfTerminal();
    }).Expect("keys[stopped: lines]on0keys[status 5: lines]");
    Terminal interrupted(ShowKeys);
    interrupted.Expect("[ready]");
    interrupted.Type("\x03");
    interrupted.Expect("[signal 2: lines]");
}

#if !defined(__SANITIZE_ADDRESS__)
int Endless(volatile int depth) {
    volatile char room[1000];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : Endless(depth + 1) + room[0];
}

TEST(ConsoleTerminal, EndlessRecursionGivesTheTerminalBack) {
    Terminal([] { GetKey(), std::cout << Endless(1); }).Expect("[signal 11: lines]");
}
#endif

// Runs a program whose input are these bytes, then the end; returns what it wrote.
std::string WithInput(const std::string& bytes, void (*program)()) {
    int input[2];
    int output[2];
    EXPECT_EQ(pipe(input), 0);
    EXPECT_EQ(pipe(output), 0);
    // Before anybody reads: keys that have not come yet are none.
    EXPECT_EQ(write(input[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    std::cout.flush();
    const pid_t child = fork();
    if (child == 0) {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        for (const int descriptor : {input[0], input[1], output[0], output[1]}) close(descriptor);
        program();
        std::cout.flush();
        _exit(0);
    }
    close(input[0]);
    close(output[1]);
    close(input[1]);
    std::string text;
    char piece[256];
    for (ssize_t count = 0; (count = read(output[0], piece, sizeof piece)) > 0;) {
        text.append(piece, static_cast<std::size_t>(count));
    }
    close(output[0]);
    waitpid(child, nullptr, 0);
    return text;
}

void ShowPipedKeys() {
    for (int i = 0; i < 4; ++i) std::cout << GetKey() << " ";
    std::cout << _getch();
}

void MixKeysAndLines() {
    std::string line;
    std::getline(std::cin, line);
    std::cout << line << " " << GetKey();
    _kbhit();  // looks at the next key and leaves it
    std::getline(std::cin, line);
    std::cout << " " << line << " " << GetKey() << " " << std::cin.get() << GetKey();
}

TEST(ConsolePipe, KeysThenNothing) {
    EXPECT_EQ(WithInput("a\n\x1b[B", ShowPipedKeys), "97 13 -80 0 -1");
    EXPECT_EQ(WithInput("", ShowPipedKeys), "0 0 0 0 -1");
}

TEST(ConsolePipe, KeysAndLinesInTurn) {
    EXPECT_EQ(WithInput("first\nxsecond\nyz", MixKeysAndLines), "first 120 second 121 1220");
}

}  // namespace

#endif
