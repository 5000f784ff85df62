#include <stdio.h>

int main(void)
{
    puts("every header compiled alone, with the layout and the values that it has to have");
    return 0;
}
