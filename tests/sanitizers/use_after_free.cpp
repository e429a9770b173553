// Reads memory that was freed: the address sanitizer has to end it with a report.
#include <cstdio>
#include <memory>

int main()
{
    auto owner = std::make_unique<int>(1);
    const volatile int *freed = owner.get();
    owner.reset();
    std::printf("went on with %d\n", *freed);
    return 0;
}
