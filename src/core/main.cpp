#include "core/qorcfg.h"

int main(int argc, char **argv)
{
    return qorcfg::run_daemon(argc, argv);
}
