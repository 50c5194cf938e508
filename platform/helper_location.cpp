#include "platform/helper_location.h"

namespace sondrel {

std::string installedHelperPath() {
    return SONDREL_HELPER_INSTALL_PATH;
}

} // namespace sondrel
