// Without checks functions of modules say nothing of what they are given and cannot use.
#ifndef KV_MISUSE
#define KV_MISUSE(...)
#endif
