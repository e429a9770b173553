#include "table.h"

int main(int argc, char **argv)
{
    return qorcfg::bench::run_and_print(argc, argv);
}
