#pragma once

typedef struct __nl_cat_d* nl_catd;
#define NL_CAT_LOCALE 1

extern "C"
{
    nl_catd catopen(const char*, int);
    char* catgets(nl_catd, int, int, const char*);
    int catclose(nl_catd);
}
