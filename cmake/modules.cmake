# Parts of the stand-in that it loads when they are first needed, so that work that does not need them does not wait
# for what they are built on.
include_guard(GLOBAL)

# zerb_loaded_when_needed(TARGET [NAME]): TARGET is a MODULE library; it is built beside the stand-in as NAME.so, and belongs to
# what is installed. standin/modules.h finds it in both places.
function(zerb_loaded_when_needed target)
    set_target_properties(${target} PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden)
    if(ARGC GREATER 1)
        set_target_properties(${target} PROPERTIES OUTPUT_NAME ${ARGV1})
    endif()
    set_property(GLOBAL APPEND PROPERTY zerbModules ${target})
endfunction()
