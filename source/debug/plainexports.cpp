#include <zorvan/exports.h>
