#include "layout_check.c"
