#pragma once

#include <string>

namespace trvtrout::exchange {

// The statements that make the tables, in one string. Nothing that exists is touched.
std::string create_tables();
// The indexes and the views. With them in place a row costs twice as much, so they are best made behind many.
std::string create_indexes_and_views();
std::string drop_indexes();

}  // namespace trvtrout::exchange
