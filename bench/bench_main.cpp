// The one main of knjige_bench. The browser benchmarks build real windows, so this is
// a widget application on the offscreen platform, with the per-user settings store
// pointed at a throwaway folder: a run never reads or writes a person's settings.
#include "output/widgets/PrintMemory.h"

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QStandardPaths::setTestModeEnabled(true);

    QApplication app(argc, argv);
    // As in the knjige program, whose printing the benchmarks measure.
    knjige::output::KeptFreedMemory::allowInThisProcess();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
