#include "simulator/BlockScene.h"

namespace camerasim {

namespace {

constexpr double DarkLux = 0.2;
constexpr double DuskLux = 20;

} // namespace

void BlockScene::setAmbient(Ambient ambient) { setLight(ambient == Ambient::Dark ? DarkLux : LitLux, ambient); }

void BlockScene::setLight(double lux, std::optional<Ambient> ambient) {
    const Ambient seen = ambient.value_or(lux < DuskLux ? Ambient::Dark : Ambient::Light);
    m_dLux = lux;
    if (m_Ambient != seen) {
        m_Ambient = seen;
        ambientChanged();
    }
    lightChanged();
}

} // namespace camerasim
