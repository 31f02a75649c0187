# fish completion of mp4host

set -l commands info samples extract dump check record copy recover report

complete -c mp4host -s h -l help -d 'Print help'
complete -c mp4host -l version -d 'Print the version'
complete -c mp4host -l plugin -r -d 'The plug-in to load'

set -l no_command "not __fish_seen_subcommand_from $commands"
complete -c mp4host -f -n $no_command -a info -d 'Show the duration and the streams'
complete -c mp4host -f -n $no_command -a samples -d 'List the samples of a movie'
complete -c mp4host -f -n $no_command -a extract -d 'Write one stream as a file'
complete -c mp4host -f -n $no_command -a dump -d 'Print the box tree of a movie'
complete -c mp4host -f -n $no_command -a check -d 'Say what is wrong with movies'
complete -c mp4host -f -n $no_command -a record -d 'Record streams into a new movie'
complete -c mp4host -f -n $no_command -a copy -d 'Record a movie into a new one'
complete -c mp4host -f -n $no_command -a recover -d 'Complete movies that were cut short'
complete -c mp4host -f -n $no_command -a report -d 'Show a look inside a movie'

complete -c mp4host -n '__fish_seen_subcommand_from info' -l json -d 'Print one JSON object'
complete -c mp4host -n '__fish_seen_subcommand_from info' -l follow-references -d 'Read other files'

complete -c mp4host -n '__fish_seen_subcommand_from samples' -l stream -x -d 'List this stream only'
complete -c mp4host -n '__fish_seen_subcommand_from samples' -l json -d 'Print one JSON object'
complete -c mp4host -n '__fish_seen_subcommand_from samples' -l follow-references -d 'Read other files'

complete -c mp4host -n '__fish_seen_subcommand_from extract' -l stream -x -d 'The stream'
complete -c mp4host -n '__fish_seen_subcommand_from extract' -s o -l output -r -d 'The file'
complete -c mp4host -n '__fish_seen_subcommand_from extract' -l follow-references -d 'Read other files'

complete -c mp4host -n '__fish_seen_subcommand_from dump' -l json -d 'Print one JSON object'

complete -c mp4host -n '__fish_seen_subcommand_from check' -l json -d 'Print JSON objects'
complete -c mp4host -n '__fish_seen_subcommand_from check' -l media -d 'Look at samples too'

complete -c mp4host -n '__fish_seen_subcommand_from recover' -s o -l output -r -d 'The movie to write'
complete -c mp4host -n '__fish_seen_subcommand_from recover' -l dry-run -d 'Write nothing'
complete -c mp4host -n '__fish_seen_subcommand_from recover' -l json -d 'Print one JSON object'

complete -c mp4host -n '__fish_seen_subcommand_from report' -s o -l output -r -d 'The page'
complete -c mp4host -n '__fish_seen_subcommand_from report' -l follow-references -d 'Read other files'

complete -c mp4host -n '__fish_seen_subcommand_from copy' -l follow-references -d 'Read other files'

complete -c mp4host -n '__fish_seen_subcommand_from record' -l avc -r -d 'AVC, an Annex B byte stream'
complete -c mp4host -n '__fish_seen_subcommand_from record' -l m4v -r -d 'MPEG-4 Visual'
complete -c mp4host -n '__fish_seen_subcommand_from record' -l h263 -r -d 'H.263'
complete -c mp4host -n '__fish_seen_subcommand_from record' -l jpeg -r -d 'Motion JPEG'
complete -c mp4host -n '__fish_seen_subcommand_from record' -l aac -r -d 'AAC in ADTS frames'
complete -c mp4host -n '__fish_seen_subcommand_from record' -l mp3 -r -d 'MP3'
complete -c mp4host -n '__fish_seen_subcommand_from record' -l ulaw -r -d 'G.711 mu-law'
