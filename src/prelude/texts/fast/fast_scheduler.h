// Korvel AutoCall scheduler: fire-and-forget timers polled at loop back-edges and function entry. One timer
// per handler name; Once removes itself after firing; a still-running poll is never re-entered (skip, don't
// queue). A poll without timers is one test. With timers it reads the clock only when the processor's time
// stamp says that the next one may be due.
struct KVTimer { std::string name; std::function<void()> fn; long long intervalMs; long long nextFireMs; bool repeat; };
inline std::vector<KVTimer>& __kvTimers() { static std::vector<KVTimer> v; return v; }
inline bool& __kvPolling() { static bool p = false; return p; }
inline long long __kvNowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::steady_clock::now().time_since_epoch()).count();
}
inline long long __kvNowMs() { return __kvNowNs() / 1000000; }
template<typename Unused> struct KVWatchOf {
    static bool on;                    // timers are armed and no poll is running
    static long long nearestMs;        // when the first of them is due
    static unsigned long long since;   // the time stamp when the clock was read last
    static unsigned long long quiet;   // ticks from then on in which nothing can be due
};
template<typename Unused> bool KVWatchOf<Unused>::on = false;
template<typename Unused> long long KVWatchOf<Unused>::nearestMs = 0;
template<typename Unused> unsigned long long KVWatchOf<Unused>::since = 0;
template<typename Unused> unsigned long long KVWatchOf<Unused>::quiet = 0;
typedef KVWatchOf<void> KVWatch;
inline void __kvWatchTimers() {
    auto& v = __kvTimers();
    KVWatch::on = !v.empty() && !__kvPolling();
    KVWatch::quiet = 0;
    if(v.empty()) return;
    KVWatch::nearestMs = v[0].nextFireMs;
    for(auto& t : v) if(t.nextFireMs < KVWatch::nearestMs) KVWatch::nearestMs = t.nextFireMs;
}
inline void __kvAutoCall(const std::string& name, std::function<void()> fn, long long intervalMs, bool repeat) {
    if(intervalMs < 0) intervalMs = 0;
    long long due = __kvNowMs() + intervalMs;
    for(auto& t : __kvTimers()) {
        if(t.name == name) {
            t.fn = fn; t.intervalMs = intervalMs; t.nextFireMs = due; t.repeat = repeat;
            __kvWatchTimers();
            return;
        }
    }
    KVTimer t; t.name = name; t.fn = fn; t.intervalMs = intervalMs; t.nextFireMs = due; t.repeat = repeat;
    __kvTimers().push_back(t);
    __kvWatchTimers();
}
inline void __kvStopCall(const std::string& name) {  // empty name = stop all
    auto& v = __kvTimers();
    for(size_t i = 0; i < v.size(); ) {
        if(name.empty() || v[i].name == name) v.erase(v.begin() + i); else ++i;
    }
    __kvWatchTimers();
}
inline void __kvFireTimers(long long now) {
    __kvPolling() = true;               // no nested/re-entrant firing
    KVWatch::on = false;
    std::vector<std::function<void()>> due;  // collect first so handlers can safely add/stop timers
    auto& v = __kvTimers();
    for(size_t i = 0; i < v.size(); ) {
        if(now >= v[i].nextFireMs) {
            due.push_back(v[i].fn);
            if(v[i].repeat) { v[i].nextFireMs = now + v[i].intervalMs; ++i; }  // reschedule (drop missed ticks)
            else v.erase(v.begin() + i);                                       // Once: fire and forget
        } else ++i;
    }
    for(auto& fn : due) fn();           // handlers run to completion
    __kvPolling() = false;
    __kvWatchTimers();
}
// No processor's time stamp advances by less than 400 million ticks per second; at this rate the time until
// the next firing is never overslept. Elsewhere every poll reads the clock.
inline void __kvLookAtClock() {
#if (defined(__x86_64__) || defined(__i386__)) && defined(__GNUC__)
    const unsigned long long stamp = __builtin_ia32_rdtsc();
    if(stamp - KVWatch::since < KVWatch::quiet) return;
    const long long now = __kvNowNs();
    long long remaining = KVWatch::nearestMs - now / 1000000;
    if(remaining > 0) {
        if(remaining > 1000000) remaining = 1000000;
        KVWatch::since = stamp;
        KVWatch::quiet = (unsigned long long)(remaining * 1000000 - now % 1000000) * 2 / 5;
        return;
    }
#else
    const long long now = __kvNowNs();
    if(now / 1000000 < KVWatch::nearestMs) return;
#endif
    __kvFireTimers(now / 1000000);
}
inline void __kvSchedPoll() { if(KVWatch::on) __kvLookAtClock(); }

