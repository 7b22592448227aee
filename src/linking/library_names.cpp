#include "linking/library_names.h"

#include <sstream>
#include <unordered_set>

namespace {

// Functions whose parameters are all numbers or void* could have the very signature of a wrapper; the
// others would merely be overloads. Variables and types clash in any case.
constexpr char cLibraryNames[] =
    "abort abs accept access acct acos acosh aligned_alloc alarm arc4random asin asinh assert at_quick_exit "
    "atan "
    "atan2 atanh atexit atof atoi atol atoll bind brk bsearch btowc bzero calloc cbrt ceil chdir chmod chown "
    "chroot clearenv clearerr clock close closefrom clone confstr connect copysign cos cosh creat crypt "
    "ctermid "
    "ctime daemon daylight difftime div dlclose dlerror dlopen dlsym drand48 drem dup dup2 dup3 dysize "
    "environ "
    "erf erfc errno execl execle execlp execv execve execvp exit exp exp10 exp2 expm1 fabs fadd fallocate "
    "fchdir "
    "fchmod fchown fclose fcloseall fcntl fd_mask fd_set fdatasync fdim fdiv fdopen feof ferror fflush ffs "
    "ffsl "
    "ffsll fgetc fgetpos fgets fileno finite floor fma fmax fmin fmod fmul fopen fork fpathconf fpclassify "
    "fprintf fputc fputs fread free freopen frexp fscanf fseek fsetpos fsqrt fstat fsub fsync ftell "
    "ftruncate "
    "fwrite gamma getc getchar getcwd getegid getenv geteuid getgid gethostid getitimer getline getlogin "
    "getopt "
    "getpagesize getpgid getpgrp getpid getppid getpriority getpt gets getsid gettid gettimeofday getuid "
    "getw "
    "getwchar gmtime grantpt hypot ilogb index initstate ioctl isalnum isalpha isascii isatty isblank "
    "iscntrl "
    "isdigit isfinite isgraph isgreater isinf isless islower isnan isnormal isprint ispunct isspace isupper "
    "isxdigit j0 j1 jn kill killpg labs ldexp ldiv lfind lgamma link listen llabs lldiv llrint llround "
    "localeconv "
    "localtime lockf log log10 log1p log2 logb longjmp lrand48 lrint lround lsearch lseek malloc mblen "
    "mbstowcs "
    "mbtowc memchr memcmp memcpy memmove memset minor mkdir mkfifo mkstemp mktemp mktime mmap modf mrand48 "
    "munmap "
    "nan nearbyint nextafter nexttoward nice open opendir optarg opterr optind optopt pause perror pipe poll "
    "popen "
    "pow ppoll pread printf pselect psignal ptsname putc putchar putenv puts putw pwrite qsort quick_exit "
    "raise "
    "rand random read readlink realloc realpath recv remainder remove remquo rename rewind rindex rint rmdir "
    "round "
    "roundeven sbrk scalb scalbln scalbn scanf seekdir select send setbuf setegid setenv seteuid setgid "
    "setitimer "
    "setjmp setlocale setns setpgid setpgrp setpriority setregid setreuid setsid setstate setuid setvbuf "
    "shutdown "
    "sigaction sigblock sighold sigignore signal signbit signgam significand sigpause sigset sin sinh sleep "
    "socket "
    "sprintf sqrt srand srand48 srandom sscanf stat stderr stdin stdout stpcpy strcat strchr strcmp strcoll "
    "strcpy "
    "strcspn strdup strerror strftime strlen strncat strncmp strncpy strpbrk strrchr strsep strsignal strspn "
    "strstr "
    "strtod strtof strtok strtol strtold strtoll strtoul strtoull strxfrm swab symlink sync syncfs syscall "
    "sysconf "
    "system tan tanh tcdrain tcflow tcflush tcgetattr tcgetpgrp tcgetsid tcsendbreak tcsetattr tcsetpgrp "
    "tempnam "
    "tgamma time timer_delete times timezone tm tmpfile tmpnam toascii tolower toupper trunc truncate "
    "ttyname "
    "ttyslot tzname tzset u_char u_int u_long u_short uint ulong umask ungetc unlink unlockpt unshare ushort "
    "usleep "
    "va_list vfork vfprintf vhangup vprintf vsprintf wait waitpid wcslen wcstombs wctomb write y0 y1 yn EOF "
    "FILE "
    "NULL BUFSIZ CHAR_BIT CLOCKS_PER_SEC DOMAIN EXIT_FAILURE EXIT_SUCCESS FP_INFINITE FP_NAN FP_NORMAL "
    "FP_SUBNORMAL "
    "FP_ZERO HUGE_VAL INFINITY NAN OVERFLOW RAND_MAX SEEK_CUR SEEK_END SEEK_SET SIGINT SIGTERM SING "
    "UNDERFLOW";

constexpr char windowsNames[] =
    "AllocConsole AnimateWindow AnyPopup AppendMenu Arc AttachConsole Beep BeginPaint BitBlt "
    "BringWindowToTop "
    "CallWindowProc CancelDC CancelIo CharLower CharUpper Chord ClipCursor CloseClipboard CloseFigure "
    "CloseHandle "
    "CloseWindow CopyFile CopyIcon CopyImage CountClipboardFormats CreateBitmap CreateBrush CreateCaret "
    "CreateCompatibleDC CreateCursor CreateDC CreateDialog CreateDirectory CreateEvent CreateFile CreateFont "
    "CreateIcon CreateMenu CreateMutex CreatePalette CreatePen CreatePopupMenu CreateProcess CreateSemaphore "
    "CreateSolidBrush CreateThread CreateWindow DebugBreak DefWindowProc DeleteDC DeleteFile DeleteMenu "
    "DeleteObject DestroyCaret DestroyCursor DestroyIcon DestroyMenu DestroyWindow DialogBox DispatchMessage "
    "DragDetect DrawEdge DrawIcon DrawMenuBar DrawText Ellipse EmptyClipboard EnableMenuItem EnableWindow "
    "EndDialog "
    "EndDoc EndMenu EndPage EndPaint Escape ExitProcess ExitThread ExitWindows ExtTextOut FillRect FillRgn "
    "FindClose FindFirstFile FindNextFile FindResource FindWindow FlashWindow FlushFileBuffers FreeConsole "
    "FreeLibrary GetActiveWindow GetAsyncKeyState GetBitmap GetCapture GetCaretBlinkTime GetCaretPos "
    "GetClassName "
    "GetClientRect GetClipboardData GetCommandLine GetComputerName GetConsoleWindow GetCurrentDirectory "
    "GetCurrentProcess GetCurrentProcessId GetCurrentThread GetCurrentThreadId GetCurrentTime GetCursor "
    "GetCursorPos GetDC GetDesktopWindow GetDeviceCaps GetDialogBaseUnits GetDlgItem GetDoubleClickTime "
    "GetDriveType GetEnvironmentVariable GetFileSize GetFileType GetFocus GetForegroundWindow GetFreeSpace "
    "GetFullPathName GetInputState GetJob GetKBCodePage GetKeyNameText GetKeyState GetKeyboardState "
    "GetKeyboardType "
    "GetLastError GetLocalTime GetMenu GetMessage GetMessagePos GetMessageTime GetModuleFileName "
    "GetModuleHandle "
    "GetObject GetOEMCP GetACP GetOpenClipboardWindow GetParent GetPixel GetProcAddress GetProcessHeap "
    "GetQueueStatus "
    "GetScrollPos GetStdHandle GetStockObject GetSysColor GetSysColorBrush GetSystemMetrics GetSystemTime "
    "GetTempPath "
    "GetTextColor GetThreadLocale GetTickCount GetTickCount64 GetTopWindow GetUserName GetVersion GetWindow "
    "GetWindowRect GetWindowText GlobalAlloc GlobalFree GlobalLock GlobalUnlock HeapAlloc HeapCreate "
    "HeapFree "
    "HideCaret InSendMessage InsertMenu InvalidateRect IsCharAlpha IsClipboardFormatAvailable "
    "IsDebuggerPresent "
    "IsIconic IsMenu IsWindow IsWindowVisible IsZoomed KillTimer LineTo LoadBitmap LoadCursor LoadIcon "
    "LoadImage "
    "LoadLibrary LoadMenu LoadModule LoadResource LoadString LocalAlloc LocalFree LockFile LockResource "
    "LockWindowUpdate LookupPrivilegeValue MessageBeep MessageBox MoveFile MoveTo MoveToEx MoveWindow MulDiv "
    "OpenClipboard OpenEvent OpenFile OpenIcon OpenMutex OpenPrinter OpenProcess OutputDebugString "
    "PaintDesktop "
    "PatBlt PeekMessage Pie PlaySound Polygon Polyline PostMessage PostQuitMessage ReadConsole ReadFile "
    "RealizePalette Rectangle RegisterClass ReleaseCapture ReleaseDC ReleaseMutex RemoveMenu ReplyMessage "
    "ResetEvent "
    "ResumeThread RevertToSelf RoundRect ScreenToClient ScrollDC ScrollWindow SearchPath SelectObject "
    "SendInput "
    "SendMessage SetActiveWindow SetBkColor SetBkMode SetCapture SetCaretBlinkTime SetCaretPos "
    "SetClipboardData "
    "SetConsoleTitle SetCurrentDirectory SetCursor SetCursorPos SetDoubleClickTime SetEvent SetFocus "
    "SetForegroundWindow SetHandleCount SetLastError SetMenu SetMessageQueue SetParent SetPixel SetPort "
    "SetRect "
    "SetSystemCursor SetTextColor SetTimer SetWindowPos SetWindowText ShellExecute ShowCaret ShowCursor "
    "ShowOwnedPopups ShowWindow Sleep SleepEx SoundSentry StartDoc StartPage StretchBlt SuspendThread "
    "SwapBuffers "
    "SwapMouseButton SwitchToThread SystemParametersInfo TerminateProcess TerminateThread TextOut TlsAlloc "
    "TlsFree "
    "TlsGetValue TranslateMessage UnlockFile UpdateWindow ValidateRect VirtualAlloc VirtualFree "
    "WaitForSingleObject "
    "WaitMessage WindowFromDC WindowFromPoint WriteConsole WriteFile Yield joyGetNumDevs midiInGetNumDevs "
    "midiOutGetNumDevs mciSendString sndPlaySound timeBeginPeriod timeEndPeriod timeGetTime waveInGetNumDevs "
    "waveOutGetNumDevs cdecl far hyper interface near pascal small BOOL BYTE CALLBACK CHAR CONST DWORD ERROR "
    "FALSE "
    "HANDLE HDC HWND IN INT LONG OPTIONAL OUT POINT RECT SHORT SIZE TEXT TRUE UINT VOID WORD";

constexpr char windowsMacros[] =
    "cdecl far hyper interface near pascal small min max CALLBACK CONST ERROR FALSE IN OPTIONAL OUT TEXT "
    "TRUE VOID";

std::unordered_set<std::string> WordSet(std::initializer_list<const char*> lists) {
    std::unordered_set<std::string> set;
    for (const char* list : lists) {
        std::istringstream words(list);
        for (std::string word; words >> word;) set.insert(word);
    }
    return set;
}

bool StartsWith(const std::string& name, const char* start) { return name.rfind(start, 0) == 0; }

}  // namespace

bool ClashesWithLibrary(const std::string& name) {
    static const std::unordered_set<std::string> names = WordSet({cLibraryNames, windowsNames});
    static const char* const ownPrefixes[] = {"_",       "kvl_",   "KVL_",   "KVSeq",
                                              "KVTimer", "KVBool", "KVSlot", "hDLL_"};
    for (const char* prefix : ownPrefixes) {
        if (StartsWith(name, prefix)) return true;
    }
    return name == "main" || name == "InitUserlibs" || names.count(name) > 0;
}

bool IsWindowsMacro(const std::string& name) {
    static const std::unordered_set<std::string> names = WordSet({windowsMacros});
    return names.count(name) > 0;
}
