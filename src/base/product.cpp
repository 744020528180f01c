#include "base/product.h"

namespace product {

const char* const version = PRODUCT_VERSION;
const char* const german_update_host = GERMAN_UPDATE_HOST;
const char* const update_host = UPDATE_HOST;

}  // namespace product
