// A Qt window of about 1,000 controls for the tree benchmark: 250 rows of a
// label, a line edit, a check box and a button.
#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QWidget>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("zeblo-many-qt");
    QScrollArea window;
    window.setWindowTitle("Zeblo Many Qt");
    auto* content = new QWidget;
    auto* grid = new QGridLayout(content);
    for (int i = 0; i < 250; ++i) {
        grid->addWidget(new QLabel(QString("Row %1").arg(i)), i, 0);
        grid->addWidget(new QLineEdit(QString("value %1").arg(i)), i, 1);
        grid->addWidget(new QCheckBox(QString("Check %1").arg(i)), i, 2);
        grid->addWidget(new QPushButton(QString("Button %1").arg(i)), i, 3);
    }
    // Every row in view: the walk lists what a user sees.
    window.setWidget(content);
    window.setWidgetResizable(true);
    window.resize(700, content->sizeHint().height() + 10);
    window.show();
    return app.exec();
}
