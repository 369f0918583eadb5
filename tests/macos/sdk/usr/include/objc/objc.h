#pragma once

typedef struct objc_class* Class;
typedef struct objc_object
{
    Class isa __attribute__((deprecated));
} * id;
typedef struct objc_selector* SEL;
typedef void (*IMP)(void);
// Where the platform has it as a type of its own and where as a signed char depends on the
// processor.
#ifdef __arm64__
typedef bool BOOL;
#define YES __objc_yes
#define NO __objc_no
#else
typedef signed char BOOL;
#define YES __objc_yes
#define NO __objc_no
#endif
#ifndef nil
#define nil nullptr
#endif
#define Nil nullptr
