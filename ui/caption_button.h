#pragma once

#include <QElapsedTimer>
#include <QPushButton>

namespace folioweld {

/// A push button that breaks its caption into lines where it is too long, shows that it has the focus in
/// another way than that it is the default button, and is pressed by Enter when it has the focus.
class CaptionButton : public QPushButton {
  Q_OBJECT

 public:
  CaptionButton(const QString& controlName, const QString& caption, QWidget* parent);

  /// Whether a caption can be read in full on a button of this size.
  [[nodiscard]] bool Fits(const QString& caption, QSize size) const;

  void ShowCaption(const QString& caption);
  /// A caption under which the button does what nobody must do by accident: a press within the system's
  /// double-click time after it appeared, or after the press before, belongs to the caption before; also one
  /// that is seen late, because the program could not look at its events.
  void ShowGuardedCaption(const QString& caption);

  /// Presses the button for a key, at the time when the key was pressed.
  void PressBy(const QKeyEvent& event);

  /// Whether the press that led to the present click belongs to the caption that the button has now.
  [[nodiscard]] bool PressBelongsToCaption() const { return pressBelongs_ && pressedCaption_ == text(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void TakePress();
  /// Whether a press was made so soon after the one before; where a time is unknown, it was not.
  [[nodiscard]] static bool WasQuick(quint64 time, quint64 before);

  QString pressedCaption_;
  bool pressBelongs_ = false;
  bool captionSeen_ = true;  ///< the guarded caption was painted
  /// Of the event that is looked at, in milliseconds of the screen's clock; 0 = unknown.
  quint64 eventTime_ = 0;
  quint64 pressTime_ = 0;  ///< of the last press, likewise
  QElapsedTimer guard_;    ///< runs from the last moment when a press was too early; invalid = no guard
};

}  // namespace folioweld
