// A Qt Widgets window the end-to-end tests drive, the Qt counterpart of
// testapp.py: a menu bar (shortcuts, a disabled item, a submenu, checkable
// items, an item that opens a dialog), push buttons, check boxes, a combo
// box, a line edit and a dialog. A status label shows the last action, so
// that tests can read what happened through the window's text.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(ZEBLO_QTAPP_NAME);
    QMainWindow window;
    window.setWindowTitle("Zeblo Qt Test");
    window.resize(500, 400);
    auto* status = new QLabel("Last: none");
    const auto report = [status](const QString& text) { status->setText("Last: " + text); };

    QDialog* dialog = nullptr;
    const auto openDialog = [&] {
        if (dialog != nullptr) return;
        dialog = new QDialog(&window);
        dialog->setWindowTitle("Qt Test Dialog");
        auto* layout = new QVBoxLayout(dialog);
        layout->addWidget(new QLabel("This is the Qt test dialog"));
        auto* dismiss = new QPushButton("Dismiss");
        layout->addWidget(dismiss);
        QObject::connect(dismiss, &QPushButton::clicked, dialog, &QDialog::reject);
        QObject::connect(dialog, &QDialog::finished, [&] {
            dialog->deleteLater();
            dialog = nullptr;
            report("dialog closed");
        });
        dialog->show();
        report("dialog opened");
    };
    const auto item = [&](QMenu* menu, const QString& title, const QKeySequence& keys = {}) {
        QAction* action = menu->addAction(title);
        action->setShortcut(keys);
        QObject::connect(action, &QAction::triggered, [report, title] { report(title); });
        return action;
    };

    QMenu* file = window.menuBar()->addMenu("File");
    item(file, "New", QKeySequence("Ctrl+N"));
    QObject::connect(item(file, "Open Dialog…", QKeySequence("Ctrl+O")), &QAction::triggered, openDialog);
    file->addSeparator();
    QObject::connect(item(file, "Quit", QKeySequence("Ctrl+Q")), &QAction::triggered, &app, &QApplication::quit);
    QMenu* edit = window.menuBar()->addMenu("Edit");
    item(edit, "Undo", QKeySequence("Ctrl+Z"));
    item(edit, "Disabled Item")->setEnabled(false);
    QMenu* view = window.menuBar()->addMenu("View");
    QAction* toolbar = item(view, "Show Toolbar");
    toolbar->setCheckable(true);
    toolbar->setChecked(true);
    item(view, "Word Wrap", QKeySequence("Ctrl+Shift+W"))->setCheckable(true);
    QMenu* zoom = view->addMenu("Zoom");
    item(zoom, "Zoom In", QKeySequence("Ctrl++"));
    item(zoom, "Zoom Out", QKeySequence("Ctrl+-"));
    item(zoom, "First Page", QKeySequence("Ctrl+PgUp"));
    window.menuBar()->addMenu("Help")->addAction("&About");  // a mnemonic, no shortcut

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    int presses = 0;
    auto* press = new QPushButton("Press Me");
    QObject::connect(press, &QPushButton::clicked, [&] { report(QString("pressed %1").arg(++presses)); });
    auto* disabled = new QPushButton("Disabled Button");
    disabled->setEnabled(false);
    auto* opener = new QPushButton("Open Dialog");
    QObject::connect(opener, &QPushButton::clicked, openDialog);
    auto* feature = new QCheckBox("Enable Feature");
    QObject::connect(feature, &QCheckBox::toggled, [&](bool on) { report(QString("feature %1").arg(on ? 1 : 0)); });
    auto* remember = new QCheckBox("Remember Me");
    remember->setChecked(true);
    auto* colour = new QComboBox;
    colour->addItems({"Red", "Green", "Blue"});
    auto* name = new QLineEdit;
    name->setPlaceholderText("Name");
    // A "Press Me" nobody sees comes first.
    auto* hidden = new QPushButton("Press Me");
    QObject::connect(hidden, &QPushButton::clicked, [&] { report("hidden pressed"); });
    for (QWidget* w :
         std::initializer_list<QWidget*>{hidden, press, disabled, opener, feature, remember, colour, name, status}) {
        layout->addWidget(w);
    }
    hidden->hide();
    window.setCentralWidget(central);
    window.show();
    name->setFocus();
    return app.exec();
}
