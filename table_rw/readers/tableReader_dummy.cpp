#include "table_rw/readers/tableReader_dummy.h"

namespace tableRW {

// ODD: the options are forgotten, and tableList leaves the list as it is: hosts recognise it so.
tableReader_dummy::tableReader_dummy(tableReaderOptions) {}

bool tableReader_dummy::readOnlyHeaders() { return false; }
bool tableReader_dummy::readDemo(int) { return false; }
bool tableReader_dummy::read() { return false; }
void tableReader_dummy::setTable(std::wstring) {}
void tableReader_dummy::tableList(std::vector<std::wstring>&) {}
capability_options tableReader_dummy::get_capabilities() { return {true, true, true, true}; }

}  // namespace tableRW
