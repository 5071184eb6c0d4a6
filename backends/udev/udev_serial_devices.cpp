#include "backends/udev/udev_serial_devices.h"

#include <libudev.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <string>
#include <string_view>

#include "backends/text/utf.h"

// The serial ports that the kernel knows, each with all by which it is known.
namespace udev_ports {
namespace {

struct Release {
  void operator()(::udev* library) const { ::udev_unref(library); }
  void operator()(::udev_enumerate* search) const { ::udev_enumerate_unref(search); }
  void operator()(::udev_device* device) const { ::udev_device_unref(device); }
};

using Library = std::unique_ptr<::udev, Release>;
using Search = std::unique_ptr<::udev_enumerate, Release>;
using Device = std::unique_ptr<::udev_device, Release>;

std::string_view ToView(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

std::string_view Property(const Device& device, const char* name) {
  return ToView(::udev_device_get_property_value(device.get(), name));
}

std::string_view Attribute(::udev_device* device, const char* name) {
  return device == nullptr ? std::string_view()
                           : ToView(::udev_device_get_sysattr_value(device, name));
}

/// Returns whether the port exists. Drivers of built-in ports make a node for each port that there
/// might be; a type other than 0 means that the driver found a circuit.
bool HasHardware(const Device& device) {
  if (!ToView(::udev_device_get_sysname(device.get())).starts_with("ttyS")) {
    return true;
  }
  const std::string_view type = Attribute(device.get(), "type");
  return type.empty() ? ::udev_device_get_parent(device.get()) != nullptr : type != "0";
}

std::u16string Join(std::string_view a, std::string_view b) {
  std::string both(a);
  if (!a.empty() && !b.empty()) {
    both += '-';
  }
  return text::FromHostName(both.append(b));
}

/// Undoes how udev writes characters that a name may not hold: "\\x20" is a blank.
std::string Unescape(std::string_view escaped) {
  constexpr std::size_t kLength = 4;  // Of one such character.
  std::string text;
  while (!escaped.empty()) {
    unsigned value = 0;
    const char* const end = escaped.data() + std::min(escaped.size(), kLength);
    if (escaped.starts_with("\\x") && escaped.size() >= kLength &&
        std::from_chars(escaped.data() + 2, end, value, 16).ptr == end) {
      text += static_cast<char>(value);
      escaped.remove_prefix(kLength);
    } else {
      text += escaped.front();
      escaped.remove_prefix(1);
    }
  }
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string()
                                    : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

/// Returns maker and model. What the device says of itself counts for more than the database of
/// hardware, which has one name for many devices.
std::u16string Name(const Device& device) {
  std::string maker = Unescape(Property(device, "ID_VENDOR_ENC"));
  std::string model = Unescape(Property(device, "ID_MODEL_ENC"));
  if (maker.empty()) {
    maker = Property(device, "ID_VENDOR_FROM_DATABASE");
  }
  if (model.empty()) {
    model = Property(device, "ID_MODEL_FROM_DATABASE");
  }
  const bool isMakerNamed = maker.empty() || model.starts_with(maker);
  return text::FromHostName(isMakerNamed ? model : model.empty() ? maker : maker + ' ' + model);
}

platform::SerialDevice Describe(const Device& device) {
  platform::SerialDevice port;
  port.description = Name(device);
  port.node = text::FromHostName(ToView(::udev_device_get_devnode(device.get())));
  // A Bluetooth link is known by the other end and its channel.
  if (const std::string_view address = Attribute(device.get(), "address"); !address.empty()) {
    port.serial = text::FromHostName(address);
    port.part = text::FromHostName(Attribute(device.get(), "channel"));
    return port;
  }
  // Without a number of the one device this would be the same for every device of its model.
  if (!Property(device, "ID_SERIAL_SHORT").empty()) {
    port.serial = text::FromHostName(Property(device, "ID_SERIAL"));
  }
  port.path = text::FromHostName(Property(device, "ID_PATH"));
  port.part = Join(Property(device, "ID_USB_INTERFACE_NUM"),
                   Attribute(::udev_device_get_parent(device.get()), "port_number"));
  return port;
}

/// Returns null if the library has no memory, or the kernel's list cannot be read.
Search StartSearch(const Library& library) {
  Search search(library ? ::udev_enumerate_new(library.get()) : nullptr);
  if (!search || ::udev_enumerate_add_match_subsystem(search.get(), "tty") < 0) {
    return nullptr;
  }
  for (const char* name : {"ttyS[0-9]*", "ttyUSB[0-9]*", "ttyACM[0-9]*", "rfcomm[0-9]*"}) {
    if (::udev_enumerate_add_match_sysname(search.get(), name) < 0) {
      return nullptr;
    }
  }
  return ::udev_enumerate_scan_devices(search.get()) < 0 ? nullptr : std::move(search);
}

}  // namespace

platform::Result<std::vector<platform::SerialDevice>, platform::SerialDevicesError>
UdevSerialDevices::List() {
  // The functions of the library take null where something was not there, so only the search is
  // checked.
  const Library library(::udev_new());
  const Search search = StartSearch(library);
  if (!search) {
    return platform::Failure(platform::SerialDevicesError::kUnreadable);
  }
  std::vector<platform::SerialDevice> ports;
  ::udev_list_entry* entry = nullptr;
  udev_list_entry_foreach(entry, ::udev_enumerate_get_list_entry(search.get())) {
    const Device device(
        ::udev_device_new_from_syspath(library.get(), ::udev_list_entry_get_name(entry)));
    const char* node = device ? ::udev_device_get_devnode(device.get()) : nullptr;
    // In a container the kernel reports ports whose nodes are not there.
    if (node != nullptr && ::access(node, F_OK) == 0 && HasHardware(device)) {
      ports.push_back(Describe(device));
    }
  }
  return ports;
}

}  // namespace udev_ports
