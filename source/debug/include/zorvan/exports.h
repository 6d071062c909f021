#ifndef ZORVAN_EXPORTS_H
#define ZORVAN_EXPORTS_H

#include <zorvan/export.h>

#endif
