        __kvBeforeFailure = []() {
#if defined(KV_CONIO_H) && !defined(_WIN32)
            kvconio::RestoreTerminal(TCSANOW);
#endif
            Own()->DrainBySignal();
        };
