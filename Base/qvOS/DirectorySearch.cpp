#include "Base/qvOS/DirectorySearch.h"

namespace qvOS {

DirectorySearch::~DirectorySearch() {
    close();
}

} // namespace qvOS
