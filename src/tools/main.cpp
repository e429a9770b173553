#include "tools/qorctl.h"

#include <iostream>

int main(int argc, char **argv)
{
    return qorcfg::run_qorctl({argv, argv + argc}, std::cin, std::cout, std::cerr);
}
