#pragma once

#include <QPointer>
#include <QWidget>

class HxData;
class HxObject;
class HxPort;
class QFormLayout;
class QLabel;
class QVBoxLayout;

/// What there is to know and to set about one object: size and file of data, and a control for each port.
///
/// Follows the object; a press on a button of the object computes at once.
class HxObjectPanel : public QWidget
{
    Q_OBJECT

public:
    explicit HxObjectPanel(QWidget* parent = nullptr);

    /// Null shows nothing.
    void show(HxObject* object);
    HxObject* object() const { return shown; }

signals:
    /// The person has changed a value.
    void valueChanged();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void clear();
    void addFacts(QFormLayout& form, HxData& source);
    void addPort(QFormLayout& form, HxPort& port);
    void showRange();

    QPointer<HxObject> shown;
    QVBoxLayout* column;
    QWidget* content = nullptr;
    QPointer<QLabel> range;
};
