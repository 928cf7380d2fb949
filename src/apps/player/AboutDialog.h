#pragma once

#include <QDialog>

namespace pxvis::player {

class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent);
};

}
