#include "drivers/visca/SONYEH4300SenseController.h"

#include "drivers/MaskRows.h"
#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/SonyEH.h"

namespace {

using namespace sensorcontrol;

// The mask unit is served, but remembers nothing.
constexpr auto Rows = joined(sony::EHTable<SONYEH4300SenseController>, unregistered(MaskRows));
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "SONYEH4300SenseController",
    .rows = Rows,
    .version = 9,
    .subVersion = 5,
    .mirrorId = sony::MirrorId,
    .focusModeId = sony::FocusModeId,
    .dayNightModeId = sony::DayNightModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "EH4300SenseController"},
    .statusText = "m_SensorStatus != ISensorController::InitSuccess!",
};

} // namespace

SONYEH4300SenseController::SONYEH4300SenseController() : SonyEHController(11, Description, sony::Turns, sony::EH) {}

SONYEH4300SenseController::~SONYEH4300SenseController() { stopDNChangeThread(); }

const ModelDescription& SONYEH4300SenseController::model() { return Description; }
