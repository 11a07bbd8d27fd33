# Optimising the libraries by a profile: which branches their code takes on a usual workload.
# release.sh records one and builds with it.
set(BRADEP_PROFILE "" CACHE PATH
    "Directory of the profile by which the libraries are optimised; none where empty")
option(BRADEP_RECORD_PROFILE
    "Build the libraries so that programs that use them write the profile to BRADEP_PROFILE" OFF)

if(BRADEP_RECORD_PROFILE AND NOT BRADEP_PROFILE)
    message(FATAL_ERROR "BRADEP_RECORD_PROFILE requires BRADEP_PROFILE, where the profile is to go")
endif()

set(profile_options)
set(profile_link_options)
if(BRADEP_PROFILE)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        message(FATAL_ERROR "BRADEP_PROFILE requires g++")
    endif()
    # So that a profile fits other directories of the same sources: files have names relative to the
    # build directory, and functions have numbers, not paths.
    set(profile_options -fprofile-prefix-path=${CMAKE_BINARY_DIR}
        --param=profile-func-internal-id=1)
    if(BRADEP_RECORD_PROFILE)
        list(APPEND profile_options -fprofile-generate=${BRADEP_PROFILE})
        set(profile_link_options -fprofile-generate)
    else()
        file(GLOB recorded ${BRADEP_PROFILE}/*.gcda)
        if(NOT recorded)
            message(FATAL_ERROR "there is no profile in ${BRADEP_PROFILE}")
        endif()
        # Code that the workload doesn't run is optimised as without a profile. Values that were
        # frequent in the recording, such as its tables' numbers of buckets, get no code of their
        # own. Warnings of a mismatch are off, as the compiler takes another path of a source for one;
        # the profile of a function whose control flow differs is not used all the same.
        list(APPEND profile_options -fprofile-use=${BRADEP_PROFILE} -fprofile-partial-training
             -fno-profile-values -Wno-missing-profile -Wno-coverage-mismatch)
    endif()
endif()
