# Writes what link.ttl says of each plug-in: they differ in the number of channels alone.

# link_plugin(<variable> <fragment> <name> <channels>) appends one.
function(link_plugin variable fragment name channels)
  set(ports)
  set(index 4)
  foreach(direction IN ITEMS Input Output)
    string(TOLOWER ${direction} lower)
    string(SUBSTRING ${lower} 0 2 short)
    foreach(channel RANGE 1 ${channels})
      string(APPEND ports " , [
		a lv2:${direction}Port , lv2:AudioPort ;
		lv2:index ${index} ;
		lv2:symbol \"${lower}_${channel}\" ;
		lv2:name \"${direction} ${channel}\"
	]")
      math(EXPR index "${index} + 1")
    endforeach()
  endforeach()
  string(APPEND ${variable} "
link:${fragment}
	a lv2:Plugin , lv2:UtilityPlugin ;
	lv2:project link:project ;
	doap:name \"${name}\" ;
	rdfs:comment \"Takes what is played and has it sent to Tarvane: as it was played, where it was played. Audio passes through.\" ;
	lv2:minorVersion 2 ;
	lv2:microVersion 0 ;
	lv2:requiredFeature urid:map ;
	lv2:optionalFeature lv2:hardRTCapable ;
	lv2:extensionData state:interface , link:viewAccess ;
	ui:ui link:ui ;
	lv2:port [
		a lv2:InputPort , atom:AtomPort ;
		atom:bufferType atom:Sequence ;
		atom:supports time:Position ;
		lv2:designation lv2:control ;
		rsz:minimumSize 4096 ;
		lv2:index 0 ;
		lv2:symbol \"control\" ;
		lv2:name \"Control\"
	] , [
		a lv2:InputPort , lv2:ControlPort ;
		lv2:index 1 ;
		lv2:symbol \"arm\" ;
		lv2:name \"Arm\" ;
		rdfs:comment \"A change arms or disarms, as the toggle in the window does.\" ;
		lv2:portProperty lv2:toggled ;
		lv2:default 0 ;
		lv2:minimum 0 ;
		lv2:maximum 1
	] , [
		a lv2:InputPort , lv2:ControlPort ;
		lv2:index 2 ;
		lv2:symbol \"freewheeling\" ;
		lv2:name \"Freewheeling\" ;
		lv2:designation lv2:freeWheeling ;
		lv2:portProperty lv2:toggled , pprop:notOnGUI ;
		lv2:default 0 ;
		lv2:minimum 0 ;
		lv2:maximum 1
	] , [
		a lv2:OutputPort , lv2:ControlPort ;
		lv2:index 3 ;
		lv2:symbol \"latency\" ;
		lv2:name \"Latency\" ;
		lv2:designation lv2:latency ;
		lv2:portProperty lv2:reportsLatency , lv2:integer , pprop:notOnGUI ;
		lv2:default 0 ;
		lv2:minimum 0 ;
		lv2:maximum 1
	]${ports} .
")
  set(${variable} "${${variable}}" PARENT_SCOPE)
endfunction()
