// How this host learns of a failed assertion of a library: by an exception.
#pragma once

#include <stdexcept>
#include <string>

#include "LUXCORE.h"

namespace host {

class LUXCORE_EXPORT FailedAssertion : public std::logic_error {
public:
  FailedAssertion(std::string const& message, std::string const& path, int line)
      : std::logic_error(message + " at " + path + ":" + std::to_string(line)) {}
};

} // namespace host
