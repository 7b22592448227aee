/* The library behind userlib.kvl. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define API __declspec(dllexport)

API int __stdcall add(int a, int b) { return a + b; }
API double __stdcall half(double x) { return x / 2; }
API long __stdcall total(unsigned char a, short b, long c) { return a + b + c; }
API const char* __stdcall greet(const char* name) {
    static char text[100];
    snprintf(text, sizeof text, "Hello, %s!", name);
    return text;
}
API const char* __stdcall nothing(void) { return NULL; }
API int __stdcall length(const char* text) { return (int)strlen(text); }
API void* __stdcall open_counter(int start) {
    int* counter = malloc(sizeof *counter);
    *counter = start;
    return counter;
}
API int __stdcall next_number(void* counter) { return ++*(int*)counter; }
API void __stdcall close_counter(void* counter) { free(counter); }
API void* __stdcall same(void* object) { return object; }
API int __stdcall fake_sleep(int n) { return n * 10; }
