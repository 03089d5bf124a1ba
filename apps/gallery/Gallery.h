#pragma once
// The gallery's dialogs: each of the library's dialogs opened as a calculation module opens
// it, over the sample base database that the gallery made, and what the user chose in it.

#include "ReportCharts.h"

#include <QString>
#include <functional>
#include <vector>

class QDialog;
class QSqlDatabase;

namespace gallery {

struct Context
{
    QSqlDatabase* db = nullptr;
    // The sample's voltages and limits, for the curve canvas.
    const std::vector<report::ProfileBus>* profile = nullptr;
    // Hears each dialog right before it runs (its exec()); the screenshot mode takes its
    // picture and closes it from there.
    std::function<void(QDialog*)> beforeExec;
};

struct Entry
{
    QString name;  // also the screenshot's file name
    QString title; // what the gallery's list shows
    // Runs the dialog until it closes; says what the user chose.
    std::function<QString(Context&)> open;
};

// Every dialog of the library, in the order of the gallery's list.
std::vector<Entry> Entries();

// The gallery's window: the list of the dialogs, each opened by a double click, all of
// them one after the other by a button, and what the last one returned. Returns when the
// window closes.
int RunGalleryWindow(const std::vector<Entry>& entries, Context& context);

} // namespace gallery
