#ifndef TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_REPORT_H
#define TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_REPORT_H

#include "tests/reliability/fault_matrix/matrix_run.h"

namespace fault_matrix {

/// The matrix as Markdown, a table for each operation; faults that are seen alike share a row.
QString report(const QList<Result>& results, double processor_seconds);

} // namespace fault_matrix

#endif
