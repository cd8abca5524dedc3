#ifndef TESTS_RELIABILITY_FAULT_MATRIX_CELL_RUN_H
#define TESTS_RELIABILITY_FAULT_MATRIX_CELL_RUN_H

#include "tests/reliability/fault_matrix/measurement.h"
#include "tests/support/local_cloud.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"
#include "tests/system/plugin.h"

#include <QElapsedTimer>

#include <functional>
#include <memory>

namespace fault_matrix {

/// Measures one cell: a host with the plug-in, and a service that goes wrong and recovers.
class CellRun
{
public:
    CellRun(const Cell& cell, const Limits& limits);

    /// May end the process, where the cell is about that.
    Measurement run();

private:
    void answerOddly();
    void startDriver();
    void strike();
    void hold();
    void lift();
    void recover();
    void closeAmid();
    void look();
    void note(const DriverAnswer& answer, const char* item, QList<int> values);
    void lookUntil(double limit, const std::function<bool()>& done);
    DriverAnswer ask(const std::function<DriverAnswer()>& request);
    void writeSetpoint();
    bool hasStruck() const;
    bool isUpToDate(int watched);
    double now() const;

    Cell cell_;
    Limits limits_;
    Expectation expected_;
    std::unique_ptr<LogRecorder> log_;
    LocalCloud cloud_;
    ScriptedService odd_cloud_;
    PluginDriver host_;
    Measurement is_;
    QElapsedTimer clock_; ///< since the strike
    int fault_ = 0;
    int status_ = 0;
    int written_ = 20;
    int looks_ = 0;
    QMap<QString, int> cached_;
};

} // namespace fault_matrix

#endif
