#include "backends/udev/udev_serial_devices.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "backends/text/utf.h"

namespace {

// Opens no port. What is found depends on the machine; a container has no udev, and often no port.
TEST(UdevSerialDevices, ListsNodesThatAreThere) {
  udev_ports::UdevSerialDevices devices;
  const auto ports = devices.List();
  if (!ports) {
    EXPECT_NE(::access("/sys/class/tty", R_OK), 0) << "The kernel's list was there to be read.";
    return;
  }
  for (const platform::SerialDevice& port : *ports) {
    const std::string node = text::ToHostName(port.node);
    EXPECT_TRUE(node.starts_with("/dev/")) << node;
    EXPECT_EQ(::access(node.c_str(), F_OK), 0) << node;
  }
}

}  // namespace
