#pragma once

#include <objc/objc.h>
#include <stddef.h>
#include <stdint.h>

typedef struct objc_method* Method;
typedef struct objc_ivar* Ivar;
@class Protocol;

extern "C"
{
    Class objc_getClass(const char*);
    Class object_getClass(id);
    const char* class_getName(Class);
    Class class_getSuperclass(Class);
    Method class_getInstanceMethod(Class, SEL);
    Method class_getClassMethod(Class, SEL);
    Ivar class_getInstanceVariable(Class, const char* name);
    bool class_addMethod(Class, SEL, IMP, const char* types);
    IMP class_getMethodImplementation(Class, SEL);
    IMP class_replaceMethod(Class, SEL, IMP, const char* types);
    IMP method_getImplementation(Method);
    IMP method_setImplementation(Method, IMP);
    const char* method_getTypeEncoding(Method);
    void method_exchangeImplementations(Method, Method);
    SEL method_getName(Method);
    Method* class_copyMethodList(Class, unsigned*);
    const char* sel_getName(SEL);
    SEL sel_registerName(const char*);
}
