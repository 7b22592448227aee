// Korvel AutoCall scheduler: fire-and-forget timers polled at loop
// back-edges and function entry. Self-contained (std::chrono clock) - no
// runtime-lib dependency. One timer per handler name; Once removes itself
// after firing; a still-running poll is never re-entered (skip, don't queue).
struct KVTimer { std::string name; std::function<void()> fn; long long intervalMs; long long nextFireMs; bool repeat; };
inline std::vector<KVTimer>& __kvTimers() { static std::vector<KVTimer> v; return v; }
inline bool& __kvPolling() { static bool p = false; return p; }
inline long long __kvNowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch()).count();
}
inline void __kvAutoCall(const std::string& name, std::function<void()> fn, long long intervalMs, bool repeat) {
    if(intervalMs < 0) intervalMs = 0;
    long long due = __kvNowMs() + intervalMs;
    for(auto& t : __kvTimers()) {
        if(t.name == name) { t.fn = fn; t.intervalMs = intervalMs; t.nextFireMs = due; t.repeat = repeat; return; }
    }
    KVTimer t; t.name = name; t.fn = fn; t.intervalMs = intervalMs; t.nextFireMs = due; t.repeat = repeat;
    __kvTimers().push_back(t);
}
inline void __kvStopCall(const std::string& name) {  // empty name = stop all
    auto& v = __kvTimers();
    for(size_t i = 0; i < v.size(); ) {
        if(name.empty() || v[i].name == name) v.erase(v.begin() + i); else ++i;
    }
}
inline void __kvSchedPoll() {
    if(__kvPolling()) return;           // no nested/re-entrant firing
    __kvPolling() = true;
    long long now = __kvNowMs();
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
}

