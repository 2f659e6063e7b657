#include "ui/toolkit/check_box.h"

#include "ui/toolkit/dialog.h"
#include "ui/toolkit/fonts.h"

namespace varkel {

CheckBox::CheckBox(Dialog& parent, const CheckSpec& spec)
    : Control(parent, spec.id, spec.rect),
      m_pictures(parent, spec.picture),
      m_role(spec.role),
      m_text(parent.LoadText(spec.caption)) {
    const bool moves = parent.GetDesktop().ReadsRightToLeft() && !spec.mirroredIn.Empty();
    if (moves) MoveWindow(Mirrored(spec.rect, spec.mirroredIn));
}

void CheckBox::SetCheck(bool checked) {
    if (m_checked == checked) return;
    m_checked = checked;
    Invalidate();
}

void CheckBox::Draw(Canvas& canvas) {
    TextStyle style = StyleOf(m_role, Parent().Colors());
    if (!IsWindowEnabled()) style.color = SkinColors::disabled;
    DrawMarkedText(canvas, Parent().GetDesktop(), Place(), m_pictures.Get(m_checked, IsWindowEnabled()),
                   m_text, style);
}

void CheckBox::AppendTargets(std::vector<TouchTarget>& targets) const {
    targets.push_back({Id(), FingerSized(Place())});
}

void CheckBox::OnTouchUp(Point at) {
    if (FingerSized(Place()).Contains(at)) Toggle();
}

bool CheckBox::OnKey(const KeyEvent& event) {
    if (event.text != " ") return false;
    Toggle();
    return true;
}

void CheckBox::Toggle() {
    SetCheck(!m_checked);
    Parent().Click(Id());
}

}  // namespace varkel
