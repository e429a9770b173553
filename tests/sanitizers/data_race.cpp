// Two threads write one number without a lock: the thread sanitizer has to end it with a report.
#include <cstdio>
#include <thread>

int main()
{
    int count = 0;
    std::thread other([&] { ++count; });
    ++count;
    other.join();
    std::printf("%d\n", count);
    return 0;
}
