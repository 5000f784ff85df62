#include <stdio.h>

int main(void)
{
    return puts("decstats") < 0;
}
