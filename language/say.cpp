#include "language/say.h"

namespace language {

std::u16string_view Say(std::u16string_view english) { return english; }

}  // namespace language
