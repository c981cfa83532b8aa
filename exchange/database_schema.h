#pragma once

#include <string>

namespace trvtrout::exchange {

// The statements that make the tables, in one string. Nothing that exists is touched.
std::string create_tables();
// The indexes and the views; made after the first rows, which costs half.
std::string create_indexes_and_views();

}  // namespace trvtrout::exchange
