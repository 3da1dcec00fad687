// Runs the shipped programs on one driver of the kernel:
//   kernel_runs cdc_acm|ftdi_sio [option of the test framework]...
#include "tests/kernel/runs/Machine.h"

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const std::string driver = argc == 2 ? argv[1] : "";
    if (driver != "cdc_acm" && driver != "ftdi_sio") {
        std::cerr << "usage: kernel_runs cdc_acm|ftdi_sio [option of the test framework]...\n";
        return 2;
    }
    using flashwriter::kernel::AdapterKind;
    using flashwriter::kernel::Machine;
    ::testing::AddGlobalTestEnvironment(
        std::make_unique<Machine>(driver == "cdc_acm" ? AdapterKind::cdcAcm : AdapterKind::ftdiSio)
            .release());
    return RUN_ALL_TESTS();
}
