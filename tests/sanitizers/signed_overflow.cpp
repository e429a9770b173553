// Counts beyond the largest number: the sanitizer of undefined behaviour has to end it with a
// report.
#include <climits>
#include <cstdio>

int main()
{
    volatile int count = INT_MAX;
    count = count + 1;
    std::printf("went on with %d\n", count);
    return 0;
}
