#pragma once

#include "controller/ControllerTraits.h"
#include "controller/ISensorController.h"
#include "controller/Journal.h"
#include "controller/SchemeChoice.h"
#include "controller/SchemeFiles.h"
#include "imaging/TuningPass.h"

#include <atomic>
#include <thread>

/// What stands behind the facade: the rooms with a state and a lock of their own, and the steps that several operations
/// share. Members and steps of the controller are open to it.
struct SENSORCONTROL_LOCAL ISensorController::Rooms {
    using Stage = sensorcontrol::StartProgress::Stage;

    explicit Rooms(ISensorController& controller);

    // The start and the end.

    /// Whether what is under way is to be left: the thread is being stopped, or the start was cancelled.
    bool isEnding() const { return isStopping || (isStarting && isCancelled); }
    void enterStage(Stage next, int total = 0);
    /// One of the stage's parameters is through.
    void advance();
    int bringUp(int videoSystem, const ModuleConfigure& configure, const VideoResolution& resolution);
    int leaveStart();
    void readSchemeChoice();
    void loadSchemes();
    void applyStartValues();
    /// What the port still holds when the thread begins: the answer to the notification that nobody read.
    void drainAfterStart();

    // Parameters.

    int set(int id, int value);
    int remember(int id, int value);
    int loadCurrentCache(const std::string& text);
    /// The text of some ids; the one that has no value is named in the error log.
    int collect(const std::set<int>& ids, std::string& text, const char* failure);

    // Schemes.

    struct SchemeState {
        int target;
        SchemeSpan targetSpan;
        int inForce;
        int start;
        int end;
        std::map<int, int> cached;
    };
    ParamScheme* record(int scheme) const;
    SchemeSpan spanOf(int scheme) const;
    bool isSpanChecked() const { return c.m_bisInited && !c.m_bisReset; }
    /// The scheme that the clock selects, -1 for none.
    int selectByClock() const;
    /// What a switch to another scheme changes besides the values.
    /// Whether the text holds parameters at all: one that does not would be applied without a fault, and change
    /// nothing.
    static bool isParameterSet(const std::string& text);

    SchemeState schemeState(int target) const;
    /// After a switch or a reset that failed, so that the next flush writes neither index nor span nor flag of it.
    void restore(const SchemeState& state);
    /// The scheme is in force: saved and told.
    void announceScheme(int scheme);
    void keepSpanInForce(int source, std::string& text) const;
    void storeSpanStart(int time);
    void storeSpanEnd(int time);

    // Day and night, lights and filter.

    void putInForce(int status);
    int setSwitchTime(std::atomic<int>& time, int newTime, const std::atomic<int>& otherTime, const char* name);
    int turnInfraredLight(int selector, int value, int highest, const char* name);
    int driveFilter(int level);
    int driveInfraredLight(int level);

    ISensorController& c;
    const sensorcontrol::ControllerTraits traits;
    sensorcontrol::Journal journal;
    sensorcontrol::SchemeChoice choice;
    sensorcontrol::SchemeFiles files;
    sensorcontrol::TuningPass tuning;

    std::atomic<bool> isStopping{false};  ///< the background thread
    std::atomic<bool> isStarting{false};  ///< init is under way
    std::atomic<bool> isCancelled{false}; ///< that start
    std::atomic<bool> isDrainDue{false};
    BRMutex* lineMutex = nullptr; ///< the driver's own; null: m_UartMutex
    /// The thread that runs init: stages and parameters of no other one are the start's.
    std::atomic<std::thread::id> starter{};
    sensorcontrol::StartProgress progress; ///< the starter's
    BRMutex clockMutex;                    ///< m_DeviceTime
};
