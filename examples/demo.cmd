hello
get practice
disable practice DefaultDomainRoute
enable practice DefaultDomainRoute
pause practice DefaultDomainRoute::DefaultSession
resume practice DefaultDomainRoute::DefaultSession
add_peer practice DefaultDomainRoute p1 udpv4://127.0.0.1,udpv4://127.0.0.2
update practice DefaultDomainRoute domain_route.participant_2.domain_id=5
enable practice NoSuchRoute
save practice
exit
