#include <iostream>

#include "tools/mibrel-cli/MibrelCli.h"

int main(int argc, char** argv) { return mibrel::cli::runMibrelCli(argc, argv, std::cout, std::cerr); }
