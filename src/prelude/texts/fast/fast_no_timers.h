// This program arms no timer.
#define __kvSchedPoll() ((void)0)

