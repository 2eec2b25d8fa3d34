/* SPDX-License-Identifier: MIT
 *
 * Component Manager: code found by type, subtype and manufacturer and called by selector.
 *
 * Parameter slots are pointer-wide and stand in declaration order. A procInfo describes a routine:
 * bits 4 and 5 its result, then two bits per parameter (the storage first) until a zero code.
 */
#ifndef VORN_TOOLBOX_COMPONENTS_H
#define VORN_TOOLBOX_COMPONENTS_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

typedef struct ComponentRecord* Component;
typedef struct ComponentInstanceRecord* ComponentInstance;
typedef SInt32 ComponentResult;
typedef intptr_t ComponentSlot;
typedef UInt32 ProcInfoType;

typedef struct ComponentDescription {
    OSType componentType;
    OSType componentSubType;
    OSType componentManufacturer;
    UInt32 componentFlags;
    UInt32 componentFlagsMask;
} ComponentDescription;
TOOLBOX_STATIC_ASSERT(sizeof(ComponentDescription) == 20, "ComponentDescription is five words");

enum { kComponentMaxSlots = 8 };

typedef struct ComponentParameters {
    UInt8 flags;
    UInt8 paramSize; /* number of slots in use */
    SInt16 what;     /* selector */
    ComponentSlot params[kComponentMaxSlots];
} ComponentParameters;

enum {
    kComponentOpenSelect = -1,
    kComponentCloseSelect = -2,
    kComponentCanDoSelect = -3,
    kComponentVersionSelect = -4,
    kComponentRegisterSelect = -5,
    kComponentTargetSelect = -6
};

/* A component's entry: `storage` is what SetComponentInstanceStorage stored, null before. */
typedef ComponentResult (*ComponentRoutineProc)(ComponentParameters* params, void* storage);
typedef ComponentRoutineProc ComponentRoutineUPP;
/* A selector's routine. It is declared with as many slots as it takes and cast to this type; it
 * is called with exactly the number of slots that its procInfo tells. */
typedef void (*ComponentFunction)(void);

TOOLBOX_EXPORT ComponentRoutineUPP NewComponentRoutineUPP(ComponentRoutineProc routine);
/* Registers a component for this process; null when it cannot. Name, info and icon may be null. */
TOOLBOX_EXPORT Component RegisterComponent(const ComponentDescription* description,
                                           ComponentRoutineUPP routine, SInt16 global, Handle name,
                                           Handle info, Handle icon);
/* The first component after `after` (null: from the start) that fits the description: zero fields
 * fit anything, flags are compared under componentFlagsMask. Null when there is none. */
TOOLBOX_EXPORT Component FindNextComponent(Component after, const ComponentDescription* looking);
/* Makes an instance and sends it kComponentOpenSelect; if that fails its result is returned, no
 * instance is left and *instance is null. */
TOOLBOX_EXPORT OSErr OpenAComponent(Component component, ComponentInstance* instance);
/* Sends kComponentCloseSelect and frees the instance; returns the component's result. */
TOOLBOX_EXPORT OSErr CloseComponent(ComponentInstance instance);
TOOLBOX_EXPORT void SetComponentInstanceStorage(ComponentInstance instance, void* storage);
TOOLBOX_EXPORT ComponentResult CallComponentTarget(ComponentInstance instance,
                                                   ComponentInstance target);
TOOLBOX_EXPORT ComponentResult CallComponentCanDo(ComponentInstance instance, SInt16 selector);
TOOLBOX_EXPORT ComponentResult CallComponentVersion(ComponentInstance instance);
/* Calls the same selector with the same parameters on another instance. */
TOOLBOX_EXPORT ComponentResult DelegateComponentCall(ComponentParameters* params,
                                                     ComponentInstance instance);
/* Calls `function` with the storage and as many slots of `params` as procInfo has codes after the
 * storage's. badComponentSelector for a procInfo of 0 or with more than kComponentMaxSlots. */
TOOLBOX_EXPORT ComponentResult CallComponentFunctionWithStorageProcInfo(void* storage,
                                                                        ComponentParameters* params,
                                                                        ComponentFunction function,
                                                                        ProcInfoType procInfo);
/* Sends a call to an instance: its component's entry gets `params`.
 * badComponentInstance for null. */
TOOLBOX_EXPORT ComponentResult CallComponent(ComponentInstance instance,
                                             ComponentParameters* params);

TOOLBOX_END_DECLS

#endif
