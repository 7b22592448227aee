-- A client of kv dap: what it asks and is told.
return function(kv)
    local adapter = { said = {}, output = '', bytes = '' }
    adapter.job = vim.fn.jobstart({ kv, 'dap' }, { on_stdout = function(_, lines)
        adapter.bytes = adapter.bytes .. table.concat(lines, '\n')
        while true do
            local head, length = adapter.bytes:match('^(Content%-Length: (%d+)\r\n\r\n)')
            if not head or #adapter.bytes < #head + length then return end
            local message = vim.json.decode(adapter.bytes:sub(#head + 1, #head + length))
            adapter.bytes = adapter.bytes:sub(#head + length + 1)
            if message.event == 'output' then adapter.output = adapter.output .. message.body.output end
            table.insert(adapter.said, message)
        end
    end, on_exit = function(_, status) adapter.ended = status end })
    -- the first message that is meant; those before it are dropped
    local function message(is)
        vim.wait(60000, function()
            while adapter.said[1] and not is(adapter.said[1]) do table.remove(adapter.said, 1) end
            return adapter.said[1]
        end, 5)
        return table.remove(adapter.said, 1) or {}
    end
    function adapter.ask(command, arguments)
        local text = vim.json.encode({ seq = 1, type = 'request', command = command, arguments = arguments or vim.empty_dict() })
        vim.fn.chansend(adapter.job, ('Content-Length: %d\r\n\r\n%s'):format(#text, text))
        local answer = message(function(said) return said.command == command end)
        return answer.success and answer.body or answer.message
    end
    function adapter.event(name)
        return message(function(said) return said.event == name end).body
    end
    function adapter.top()
        local frame = adapter.ask('stackTrace', { threadId = 1, levels = 1 }).stackFrames[1]
        return frame.name .. ':' .. frame.line, frame.id
    end
    return adapter
end
