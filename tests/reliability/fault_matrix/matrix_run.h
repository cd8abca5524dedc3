#ifndef TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_RUN_H
#define TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_RUN_H

#include "tests/reliability/fault_matrix/measurement.h"

#include <QObject>
#include <QProcess>

namespace fault_matrix {

/// A cell with what was measured in it, and what is wrong with that.
struct Result
{
    Cell cell;
    Measurement measured;
    QStringList breaches;
    int runs = 0; ///< more than one if the computer was too busy for the times of the first
};

/// Runs cells, each in a process of its own, several at a time. A cell that is late and nothing
/// else is run again when all others are done, twice at most: other programs may have been in its
/// way.
class MatrixRun : public QObject
{
    Q_OBJECT

public:
    MatrixRun(const QList<Cell>& cells, int jobs, double patience);

    /// Returns when all have been run, in the order of the cells.
    QList<Result> run();

Q_SIGNALS:
    /// A cell has been run.
    void done(int count, const QString& cell, const QStringList& breaches);
    void finished();

private:
    void startNext();
    void take(QProcess* process, int index);

    QList<Result> results_;
    int jobs_;
    double patience_;
    QList<int> waiting_;
    int again_ = 0;
    int done_ = 0;
};

} // namespace fault_matrix

#endif
