#include "ZelkinMain.h"

int main(int argc, char** argv)
{
    return RunZelkin(argc, argv);
}
