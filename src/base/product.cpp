#include "base/product.h"

namespace product {

const char* const version = PRODUCT_VERSION;

}  // namespace product
