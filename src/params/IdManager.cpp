#include "params/IdManager.h"

void IdManager::addParameterId(int kind, int firstId, int lastId) {
    std::set<int>* ids = nullptr;
    switch (kind) {
    case Common:
        ids = &m_CommonIds;
        break;
    case Especial:
        ids = &m_EspecialIds;
        break;
    case SetOnly:
        ids = &m_SetOnlyIds;
        break;
    case KeepDefault:
        ids = &m_KeepDefaultIds;
        break;
    default:
        return;
    }
    // Counts in a wider type: a range may end at the largest id.
    for (long long id = firstId; id <= lastId; ++id)
        ids->insert(ids->end(), static_cast<int>(id));
}

void IdManager::addParameterId(int kind, int id) { addParameterId(kind, id, id); }

int IdManager::getIdType(int id) const {
    if (m_KeepDefaultIds.contains(id))
        return KeepDefault;
    if (m_CommonIds.contains(id))
        return Common;
    if (m_EspecialIds.contains(id))
        return Especial;
    return m_SetOnlyIds.contains(id) ? SetOnly : Unknown;
}

int IdManager::isIdExistInSet(int id, const std::set<int>& ids) { return ids.contains(id) ? 1 : 0; }

int IdManager::isIdExist(int id) const { return getIdType(id) != Unknown ? 1 : 0; }

int IdManager::getCommonIdList(std::set<int>& ids) const {
    ids = m_CommonIds;
    return 1;
}

int IdManager::getEspecialIdList(std::set<int>& ids) const {
    ids = m_EspecialIds;
    return 1;
}

int IdManager::getSetOnlyIdList(std::set<int>& ids) const {
    ids = m_SetOnlyIds;
    return 1;
}

int IdManager::getKeepDefaultValueList(std::set<int>& ids) const {
    ids = m_KeepDefaultIds;
    return 1;
}
