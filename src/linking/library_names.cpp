#include "linking/library_names.h"

#include <cstring>
#include <sstream>
#include <unordered_set>

#include "base/text.h"

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

// What the same headers declare besides; only C functions meet these, whose names C++ cannot overload.
constexpr char furtherNames[] =
    "asctime snprintf asprintf dprintf vsnprintf vasprintf vdprintf strcasecmp strncasecmp strnlen "
    "strndup strptime stpncpy strverscmp strfry strfromd clock_adjtime clock_getres clock_gettime "
    "clock_nanosleep clock_settime nanosleep gethostname getdomainname getentropy getgroups getdelim "
    "getpass getsubopt gettext getwc getwd getusershell getloadavg getcpu getdate getdtablesize "
    "sethostname sethostid setbuffer setlinebuf unsetenv secure_getenv pclose pathconf pipe2 valloc "
    "posix_memalign posix_openpt a64l l64a bcmp bcopy ecvt fcvt gcvt memccpy memmem mempcpy memfrob "
    "sincos ualarm timegm timelocal timespec_get putwc putwchar putw fgetwc fgetws fputwc fputws fwide "
    "mbrlen mbrtowc mbsinit mbsrtowcs mkdtemp mkostemp mkstemps seed48 nrand48 erand48 jrand48 lcong48 "
    "on_exit reallocarray explicit_bzero sched_yield canonicalize totalorder nextup nextdown llogb "
    "fseeko ftello fmemopen flockfile funlockfile eaccess euidaccess execvpe execveat fexecve faccessat "
    "fchownat lchown linkat symlinkat unlinkat renameat readlinkat revoke newlocale uselocale freelocale "
    "duplocale ngettext dgettext textdomain bindtextdomain cfmakeraw cfgetispeed cfgetospeed cfsetispeed "
    "cfsetospeed cfsetspeed siginterrupt profil rpmatch tgkill group_member cuserid endusershell gsignal "
    "ssignal vscanf vsscanf vfscanf swprintf wprintf fwprintf swscanf wscanf fwscanf ungetwc "
    "open_memstream qecvt qfcvt qgcvt fmaximum fminimum fmaxmag fminmag fromfp ufromfp setpayload "
    "getpayload alloca strtoq strtouq";

// Classes, templates and objects of the C++ library, ambiguous with a function in the global namespace.
constexpr char cppLibraryNames[] =
    "aligned_storage aligned_union alignment_of allocator allocator_arg allocator_traits array atto "
    "auto_ptr shared_ptr unique_ptr weak_ptr "
    "bad_alloc bad_array_new_length bad_cast bad_exception bad_function_call bad_typeid binary_function "
    "binary_negate binder1st binder2nd bit_and bit_not bit_or bit_xor centi cerr char_traits chrono cin "
    "clog codecvt codecvt_base collate common_type conditional ctype ctype_base deca decay deci divides "
    "domain_error enable_if equal_to errc error_category error_code error_condition exa exception "
    "exception_ptr extent false_type femto filebuf float_denorm_style float_round_style fpos fstream "
    "giga greater greater_equal hash hecto ifstream ignore initializer_list integral_constant "
    "invalid_argument io_errc ios ios_base iostream istream istringstream iterator iterator_traits kilo "
    "lconv length_error less less_equal locale logic_error logical_and logical_not logical_or "
    "make_signed make_unsigned mega messages messages_base micro milli minus modulus money_base "
    "money_get money_put moneypunct multiplies nano negate nested_exception new_handler not_equal_to "
    "nothrow num_get num_put numeric_limits numpunct ofstream ostream ostringstream out_of_range "
    "overflow_error pair peta pico piecewise_construct placeholders plus pointer_traits range_error rank "
    "ratio reference_wrapper result_of runtime_error setbase setprecision setw streambuf streamoff "
    "streampos streamsize stringbuf stringstream system_error tera terminate_handler time_base time_get "
    "time_put tm to_string to_wstring true_type tuple tuple_element tuple_size type_info unary_function "
    "unary_negate underflow_error underlying_type unexpected_handler uniform_int_distribution "
    "uses_allocator advance bind1st bind2nd forward_as_tuple iter_swap make_pair make_tuple tie";

// Of the C library, but no functions: variables, macros and types.
constexpr char nonFunctions[] =
    "assert daylight environ errno fd_mask fd_set minor optarg opterr optind optopt signbit signgam "
    "stderr stdin stdout timezone tm tzname u_char u_int u_long u_short uint ulong ushort va_list "
    "fpclassify isfinite isgreater isless isnormal isunordered islessequal isgreaterequal islessgreater "
    "setjmp offsetof alloca EOF FILE BUFSIZ CHAR_BIT CLOCKS_PER_SEC DOMAIN EXIT_FAILURE EXIT_SUCCESS "
    "HUGE_VAL INFINITY NAN OVERFLOW RAND_MAX SEEK_CUR SEEK_END SEEK_SET SIGINT SIGTERM SING UNDERFLOW "
    "size_t time_t clock_t pid_t";

std::unordered_set<std::string> WordSet(std::initializer_list<const char*> lists) {
    std::unordered_set<std::string> set;
    for (const char* list : lists) {
        std::istringstream words(list);
        for (std::string word; words >> word;) set.insert(word);
    }
    return set;
}

const std::unordered_set<std::string>& DeclaredNames() {
    static const std::unordered_set<std::string> names =
        WordSet({cLibraryNames, furtherNames, cppLibraryNames});
    return names;
}

// Variants of a function for other types or locales: sinf, fabsl, strtol_l, getc_unlocked, fopen64.
bool IsVariant(const std::string& name) {
    for (const char* ending :
         {"f", "l", "_l", "_r", "_unlocked", "64", "f32", "f64", "f128", "f32x", "f64x"}) {
        const std::size_t length = std::strlen(ending);
        if (name.size() <= length || name.compare(name.size() - length, length, ending) != 0) continue;
        if (DeclaredNames().count(name.substr(0, name.size() - length)) != 0) return true;
    }
    return false;
}

}  // namespace

bool ClashesWithLibrary(const std::string& name) {
    static const std::unordered_set<std::string> names = WordSet({cLibraryNames, windowsNames});
    static const char* const ownPrefixes[] = {"_",      "kvl_",   "KVL_",   "KVSeq", "KVTimer",
                                              "KVBool", "KVSlot", "KVStep", "hDLL_"};
    for (const char* prefix : ownPrefixes) {
        if (StartsWith(name, prefix)) return true;
    }
    return name == "main" || name == "InitUserlibs" || names.count(name) > 0;
}

bool IsWindowsMacro(const std::string& name) {
    static const std::unordered_set<std::string> names = WordSet({windowsMacros});
    return names.count(name) > 0;
}

bool IsDeclaredByHeaders(const std::string& name) {
    for (const char* family :
         {"_", "pthread_", "sched_", "sig", "timer_", "wcs", "wmem", "isw", "tow", "wct"}) {
        if (StartsWith(name, family)) return true;
    }
    return DeclaredNames().count(name) != 0 || IsVariant(name);
}

bool IsOfCppLibrary(const std::string& name) {
    static const std::unordered_set<std::string> names = WordSet({cppLibraryNames});
    return names.count(name) > 0;
}

bool IsLibraryNonFunction(const std::string& name) {
    static const std::unordered_set<std::string> names = WordSet({nonFunctions});
    return names.count(name) > 0;
}
