# platform_make_application(<program> [SIGNATURE code] [BACKGROUND])
# Here a plain program will do: it states its signature itself when it begins to receive events.
function(platform_make_application target)
endfunction()
