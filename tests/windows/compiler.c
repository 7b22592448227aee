// Stands in for a g++ of Windows under Wine: hands its command line, read in the letters of the system's language as
// most compilers read it, to the cross compiler of Linux. Wine starts that, but cannot wait for it: the exit status
// comes through a file, STATUS and the number of the process.
#include <stdio.h>
#include <string.h>
#include <windows.h>

static char line[32768];
static size_t size = 0;

static void Add(char c) {
    if (size + 1 < sizeof line) line[size++] = c;
}

static void AddText(const char* text) {
    for (; *text != '\0'; ++text) Add(*text);
}

// A word in quotes; paths become those of Linux.
static void AddWord(const char* word) {
    AddText(" \"");
    for (; *word != '\0'; ++word) {
        if (strncmp(word, "Z:\\", 3) == 0) {
            ++word;
        } else {
            Add(*word == '\\' ? '/' : *word);
        }
    }
    Add('"');
}

// The path at which both systems find the status.
static const char* StatusFile(void) {
    static char path[MAX_PATH];
    snprintf(path, sizeof path, "%s%lu", STATUS, GetCurrentProcessId());
    return path;
}

int main(int count, char** words) {
    STARTUPINFOA startup = {sizeof startup};
    PROCESS_INFORMATION process;
    FILE* file;
    int status = 1;
    AddText("/bin/sh -c \"x86_64-w64-mingw32-g++ \\\"$@\\\"; echo $? >$0.new; mv $0.new $0\"");
    AddWord(StatusFile());
    for (int i = 1; i < count; ++i) AddWord(words[i]);
    if (!CreateProcessA("Z:\\bin\\sh", line, NULL, NULL, TRUE, 0, NULL, NULL, &startup, &process)) return 1;
    while ((file = fopen(StatusFile(), "r")) == NULL) Sleep(20);
    fscanf(file, "%d", &status);
    fclose(file);
    remove(StatusFile());
    return status;
}
